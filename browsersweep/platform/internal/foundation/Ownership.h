#pragma once

#import <Foundation/Foundation.h>

namespace browsersweep {

// A host may compile these sources into its own program, with automatic reference counting or
// without; GNUstep's runtime has none. What differs stands here.
#if __has_feature(objc_arc)

template <typename Object>
Object autoreleased(Object object) {
    return object;
}
inline void retain(id /*object*/) {}
inline void release(id /*object*/) {}

#else

/** Hands on a new object to whom it is returned, until the pool is drained. */
template <typename Object>
Object autoreleased(Object object) {
    return [object autorelease];
}
inline void retain(id object) {
    [object retain];
}
inline void release(id object) {
    [object release];
}

#endif

/** Owns a reference to an object. */
template <typename Object>
class Retained {
public:
    explicit Retained(Object object) : object_(object) { retain(object_); }
    Retained(const Retained&) = delete;
    Retained& operator=(const Retained&) = delete;
    ~Retained() { release(object_); }

    Object get() const { return object_; }

private:
    Object object_;
};

}  // namespace browsersweep
