#pragma once

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>
#include <utility>

// The two owners through which alone this back end holds references to what belongs to the system. For
// Objective-C++ sources only.

namespace tessarel::macos {

/// Owns one reference to a Core Foundation object, or none.
template <class Type>
class CfRef {
public:
    CfRef() = default;
    CfRef(const CfRef&) = delete;
    CfRef& operator=(const CfRef&) = delete;
    CfRef(CfRef&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    CfRef& operator=(CfRef&& other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~CfRef() {
        if (m_object)
            CFRelease(m_object);
    }

    /// Takes over the reference that a function with Create or Copy in its name has given; may be null.
    [[nodiscard]] static CfRef adopt(Type object) {
        CfRef ref;
        ref.m_object = object;
        return ref;
    }
    /// Takes a reference of its own to an object that somebody else owns; may be null.
    [[nodiscard]] static CfRef share(Type object) {
        if (object)
            CFRetain(object);
        return adopt(object);
    }

    [[nodiscard]] Type get() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

    /// Gives the reference away to the caller, who has to release it.
    [[nodiscard]] Type release() { return std::exchange(m_object, nullptr); }

private:
    Type m_object = nullptr;
};

/// Owns one reference to an Objective-C object, or none. `Pointer` is the pointer's type, as in
/// `ObjcRef<NSString*>`.
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

    /// Takes over the reference that `alloc` has given; may be nil.
    [[nodiscard]] static ObjcRef adopt(Pointer object) {
        ObjcRef ref;
        ref.m_object = object;
        return ref;
    }
    /// Takes a reference of its own to an object that somebody else owns; may be nil.
    [[nodiscard]] static ObjcRef share(Pointer object) { return adopt([object retain]); }

    [[nodiscard]] Pointer get() const { return m_object; }
    explicit operator bool() const { return m_object != nil; }

private:
    Pointer m_object = nil;
};

} // namespace tessarel::macos
