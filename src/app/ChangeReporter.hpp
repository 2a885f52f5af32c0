#pragma once

#include "runtime/Observable.hpp"

#include <functional>
#include <vector>

namespace sentrel {

/// The base of views and of parts of them: tells the owner that the content has changed. Main actor.
class ChangeReporter {
public:
    ChangeReporter(const ChangeReporter&) = delete;

    /// Called after each change of what is shown.
    std::function<void()> onChange;

protected:
    ChangeReporter() = default;
    ~ChangeReporter() = default;

    void changed()
    {
        if (onChange) {
            onChange();
        }
    }

    /// Reports each change of the property.
    template <class T> void follow(Observable<T>& property)
    {
        observations_.push_back(property.observe([this](const T&) { changed(); }));
    }

    std::vector<Observation> observations_;
};

} // namespace sentrel
