#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <Network/Network.h>
#include <dispatch/dispatch.h>

#include <utility>

namespace velloway {

/// Owns one reference to an object of the platform's C interfaces; `Count` says how its references are counted.
/// For plain C++ files only: in Objective-C the compiler counts some of these by itself.
template <class Pointer, class Count> class NativeRef {
public:
    NativeRef() = default;
    /// Takes over the reference that the caller got from a function named create or copy.
    static NativeRef adopt(Pointer object) {
        NativeRef owner;
        owner.object_ = object;
        return owner;
    }
    /// Adds a reference to an object that belongs to somebody else.
    static NativeRef share(Pointer object) {
        Count::retain(object);
        return adopt(object);
    }
    NativeRef(NativeRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    NativeRef& operator=(NativeRef&& other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~NativeRef() {
        if (object_ != nullptr) {
            Count::release(object_);
        }
    }

    Pointer get() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

private:
    Pointer object_ = nullptr;
};

struct NetworkCount {
    static void retain(void* object) { nw_retain(object); }
    static void release(void* object) { nw_release(object); }
};
struct DispatchCount {
    static void retain(dispatch_object_t object) { dispatch_retain(object); }
    static void release(dispatch_object_t object) { dispatch_release(object); }
};
struct CoreFoundationCount {
    static void retain(CFTypeRef object) { CFRetain(object); }
    static void release(CFTypeRef object) { CFRelease(object); }
};

template <class Pointer> using NetworkRef = NativeRef<Pointer, NetworkCount>;
template <class Pointer> using DispatchRef = NativeRef<Pointer, DispatchCount>;
template <class Pointer> using CoreFoundationRef = NativeRef<Pointer, CoreFoundationCount>;

} // namespace velloway
