#pragma once

// The binary form of Objective-C classes as clang writes it for macOS, with what this test-only runtime adds.
// README.md tells what the runtime can and cannot do.

#include <cstdint>

struct objc_class;

extern "C" {

struct objc_object {
    objc_class* isa;
};
typedef objc_object* RuntimeObject;
typedef const char* RuntimeSelector;
typedef void (*RuntimeMethod)();

struct RuntimeMethodEntry {
    RuntimeSelector name;
    const char* types;
    RuntimeMethod code;
};
struct RuntimeMethodList {
    std::uint32_t entrySize;
    std::uint32_t count;
    RuntimeMethodEntry first[];
};
struct RuntimeIvarEntry {
    std::uint64_t* offset;
    const char* name;
    const char* type;
    std::uint32_t alignment;
    std::uint32_t size;
};
struct RuntimeIvarList {
    std::uint32_t entrySize;
    std::uint32_t count;
    RuntimeIvarEntry first[];
};
struct RuntimeClassData {
    std::uint32_t flags;
    std::uint32_t instanceStart;
    std::uint32_t instanceSize;
    std::uint32_t reserved;
    const std::uint8_t* strongLayout;
    const char* name;
    RuntimeMethodList* methods;
    void* protocols;
    RuntimeIvarList* ivars;
    const std::uint8_t* weakLayout;
    void* properties;
};
struct objc_class : objc_object {
    objc_class* superclass;
    void* cache;
    void* table;
    RuntimeClassData* data;
};
struct RuntimeCategory {
    const char* name;
    objc_class* extended;
    RuntimeMethodList* instanceMethods;
    RuntimeMethodList* classMethods;
};
/// What `super` is compiled to.
struct RuntimeSuper {
    RuntimeObject receiver;
    objc_class* current;
};

RuntimeObject runtimeAllocate(objc_class* ofClass);
void runtimeDestroy(RuntimeObject object);
/// How many objects are alive, classes and constant strings aside.
int runtimeObjectsAlive();
RuntimeSelector sel_registerName(const char* name);
RuntimeObject objc_retain(RuntimeObject object);
void objc_release(RuntimeObject object);
RuntimeObject objc_autorelease(RuntimeObject object);
bool objc_opt_isKindOfClass(RuntimeObject object, objc_class* ofClass);
bool objc_opt_respondsToSelector(RuntimeObject object, RuntimeSelector selector);
RuntimeObject objc_msgSend(RuntimeObject receiver, RuntimeSelector selector, ...);
void* objc_autoreleasePoolPush();
void objc_autoreleasePoolPop(void* pool);
}
