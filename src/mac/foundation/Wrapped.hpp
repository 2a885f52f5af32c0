#pragma once

namespace sentrel::mac {

/// A port's object that holds one of a framework.
template <class Port, class Object> class Wrapped : public Port {
public:
    explicit Wrapped(Object* native) : native_(native) {}
    [[nodiscard]] Object* native() const { return native_; }

    /// The framework's object of a port's object, which must be of this class.
    [[nodiscard]] static Object* of(const Port& port) { return static_cast<const Wrapped&>(port).native(); }

private:
    Object* const native_;
};

} // namespace sentrel::mac
