// Our own declarations of the few platform functions that the macOS host calls, so that it can be checked and
// run on a machine without the platform's headers. SIGNATURES.md lists them.
#pragma once

#include <stddef.h>
#include <stdint.h>

// With Darwin's own C library these come from there.
#if __has_include(<sys/qos.h>)
#include <sys/qos.h>
#else
typedef enum : unsigned int { QOS_CLASS_UTILITY = 0x11, QOS_CLASS_USER_INTERACTIVE = 0x21 } qos_class_t;
#endif

#pragma clang assume_nonnull begin

#ifdef __OBJC__
@protocol OS_dispatch_object
@end
@protocol OS_dispatch_queue <OS_dispatch_object>
@end
@class NSObject;
typedef NSObject<OS_dispatch_object>* dispatch_object_t;
typedef NSObject<OS_dispatch_queue>* dispatch_queue_t;
#else
typedef struct dispatch_object_s {
private:
    dispatch_object_s();
    ~dispatch_object_s();
    dispatch_object_s(const dispatch_object_s&);
    void operator=(const dispatch_object_s&);
}* dispatch_object_t;
#define MACSDK_DISPATCH_DECL(name) typedef struct name##_s : public dispatch_object_s {}* name##_t
MACSDK_DISPATCH_DECL(dispatch_queue);
MACSDK_DISPATCH_DECL(dispatch_queue_attr);
MACSDK_DISPATCH_DECL(dispatch_data);

typedef void (*dispatch_function_t)(void* _Nullable context);
typedef void (^dispatch_block_t)(void);
typedef uint64_t dispatch_time_t;
typedef qos_class_t dispatch_qos_class_t;
#define DISPATCH_QUEUE_SERIAL nullptr
#define DISPATCH_TIME_NOW (0ull)
#define DISPATCH_DATA_DESTRUCTOR_DEFAULT nullptr

extern "C" {
dispatch_queue_attr_t dispatch_queue_attr_make_with_qos_class(dispatch_queue_attr_t _Nullable attr,
                                                              dispatch_qos_class_t qosClass,
                                                              int relativePriority);
dispatch_queue_t dispatch_queue_create(const char* _Nullable label, dispatch_queue_attr_t _Nullable attr);
void dispatch_async_f(dispatch_queue_t queue, void* _Nullable context, dispatch_function_t work);
void dispatch_after_f(dispatch_time_t when, dispatch_queue_t queue, void* _Nullable context,
                      dispatch_function_t work);
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);
void dispatch_queue_set_specific(dispatch_queue_t queue, const void* key, void* _Nullable context,
                                 dispatch_function_t _Nullable destructor);
void* _Nullable dispatch_get_specific(const void* key);
dispatch_data_t dispatch_data_create(const void* buffer, size_t size, dispatch_queue_t _Nullable queue,
                                     dispatch_block_t _Nullable destructor);
dispatch_data_t dispatch_data_create_map(dispatch_data_t data, const void* _Nullable* _Nullable buffer,
                                         size_t* _Nullable size);
void dispatch_retain(dispatch_object_t object);
void dispatch_release(dispatch_object_t object);
}
#endif

#pragma clang assume_nonnull end
