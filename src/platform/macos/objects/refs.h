// SPDX-License-Identifier: MIT

#pragma once

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>
#include <utility>

// The two owners of references to the system's objects; nothing else in this back end retains or releases.
// For Objective-C++ sources only.

namespace tessarel::macos {

/// Owns one reference to a Core Foundation object, or is null. It can be moved, but not copied or assigned.
template <class Type>
class CfRef {
public:
    CfRef() = default;
    CfRef(const CfRef&) = delete;
    CfRef& operator=(const CfRef&) = delete;
    CfRef(CfRef&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    ~CfRef() {
        if (m_object)
            CFRelease(m_object);
    }

    /// Takes over the reference that a function with Create or Copy in its name has returned. `object` may be
    /// null.
    [[nodiscard]] static CfRef adopt(Type object) {
        CfRef ref;
        ref.m_object = object;
        return ref;
    }
    /// Retains an object that belongs to someone else. `object` may be null.
    [[nodiscard]] static CfRef share(Type object) {
        if (object)
            CFRetain(object);
        return adopt(object);
    }

    /// Returns the object without a reference of its own; null when there is none.
    [[nodiscard]] Type get() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

    /// Returns the reference to the caller, who must release it, and becomes null.
    [[nodiscard]] Type release() { return std::exchange(m_object, nullptr); }

private:
    Type m_object = nullptr;
};

/// Owns one reference to an Objective-C object, or is nil. Movable, not copyable. `Pointer` is the pointer's
/// type, as in `ObjcRef<NSString*>`.
template <class Pointer>
class ObjcRef {
public:
    ObjcRef() = default;
    ObjcRef(const ObjcRef&) = delete;
    ObjcRef& operator=(const ObjcRef&) = delete;
    ObjcRef(ObjcRef&& other) noexcept : m_object(std::exchange(other.m_object, nil)) {}
    ObjcRef& operator=(ObjcRef&& other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~ObjcRef() { [m_object release]; }

    /// Takes over the reference of an object that was made with `alloc`. `object` may be nil.
    [[nodiscard]] static ObjcRef adopt(Pointer object) {
        ObjcRef ref;
        ref.m_object = object;
        return ref;
    }
    /// Retains an object that belongs to someone else, such as an autoreleased one. `object` may be nil.
    [[nodiscard]] static ObjcRef share(Pointer object) { return adopt([object retain]); }

    /// Returns the object without a reference of its own; nil when there is none.
    [[nodiscard]] Pointer get() const { return m_object; }
    explicit operator bool() const { return m_object != nil; }

private:
    Pointer m_object = nil;
};

} // namespace tessarel::macos
