#pragma once

#include <memory>
#include <utility>

namespace sentrel {

/// A handle that knows when its object has died. It may be copied and dropped on any thread; `get` must be called on
/// the thread on which the object lives and dies.
template <class T> class Weak {
public:
    Weak() = default;

    /// The object, or null when it is gone.
    [[nodiscard]] T* get() const { return object_ ? *object_ : nullptr; }

private:
    template <class U> friend class WeakAnchor;
    explicit Weak(std::shared_ptr<T*> object) : object_(std::move(object)) {}
    std::shared_ptr<T*> object_;
};

/// Makes weak handles to the object that it is a member of; declared last, so that the handles are cut first.
template <class T> class WeakAnchor {
public:
    explicit WeakAnchor(T& object) : object_(std::make_shared<T*>(&object)) {}
    ~WeakAnchor() { *object_ = nullptr; }
    WeakAnchor(const WeakAnchor&) = delete;
    WeakAnchor& operator=(const WeakAnchor&) = delete;

    [[nodiscard]] Weak<T> weak() const { return Weak<T>{object_}; }

private:
    std::shared_ptr<T*> object_;
};

} // namespace sentrel
