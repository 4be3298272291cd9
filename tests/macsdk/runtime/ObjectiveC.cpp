#include "runtime/ObjectiveC.h"

#include <Block.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

extern "C" {
extern void* _NSConcreteStackBlock[32];
extern void* _NSConcreteGlobalBlock[32];
extern void* _NSConcreteMallocBlock[32];
extern objc_class OBJC_CLASS_$_NSConstantText;
// Where the linker has put side by side what clang wrote for each file.
extern RuntimeSelector __start_objc_selrefs[] __attribute__((weak));
extern RuntimeSelector __stop_objc_selrefs[] __attribute__((weak));
extern objc_class* __start_objc_classlist[] __attribute__((weak));
extern objc_class* __stop_objc_classlist[] __attribute__((weak));
extern RuntimeCategory* __start_objc_catlist[] __attribute__((weak));
extern RuntimeCategory* __stop_objc_catlist[] __attribute__((weak));
/// Every class refers to it.
void* _objc_empty_cache[2];
}

namespace {

constexpr std::uint32_t isMetaclass = 1;
/// In front of each object stands its count.
constexpr std::size_t headerSize = 16;

[[noreturn]] void die(const std::string& why) {
    std::fprintf(stderr, "the test runtime stops: %s\n", why.c_str());
    std::abort();
}

/// The linker of this system takes the places of fields for constants.
void makeWritable(void* address) {
    const auto pageSize = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    const std::uintptr_t page = reinterpret_cast<std::uintptr_t>(address) / pageSize * pageSize;
    if (::mprotect(reinterpret_cast<void*>(page), pageSize, PROT_READ | PROT_WRITE) != 0) {
        die("a field can not be moved");
    }
}

/// All that is known about the classes of the program. Never destroyed: objects may outlive it.
struct Registry {
    using MethodTable = std::unordered_map<RuntimeSelector, RuntimeMethod>;

    std::recursive_mutex mutex;
    bool isReady = false;
    std::unordered_set<std::string> selectors;
    std::unordered_map<objc_class*, MethodTable> methods;
    std::unordered_map<objc_class*, std::uint32_t> instanceSizes;
    std::unordered_map<RuntimeObject, std::unordered_set<RuntimeObject*>> weakReferences;
    int objectsAlive = 0;

    RuntimeSelector unique(const char* name) { return selectors.insert(name).first->c_str(); }

    void add(objc_class* owner, const RuntimeMethodList* list) {
        for (std::uint32_t index = 0; list != nullptr && index < list->count; ++index) {
            methods[owner][unique(list->first[index].name)] = list->first[index].code;
        }
    }

    /// The fields of a class begin where those of its superclass end, which is known only now.
    std::uint32_t layOut(objc_class* laidOut) {
        if (const auto known = instanceSizes.find(laidOut); known != instanceSizes.end()) {
            return known->second;
        }
        const RuntimeClassData& data = *laidOut->data;
        std::uint32_t shift = 0;
        if (laidOut->superclass != nullptr) {
            const std::uint32_t needed = (layOut(laidOut->superclass) + 7) / 8 * 8;
            shift = needed > data.instanceStart ? (needed - data.instanceStart + 7) / 8 * 8 : 0;
        }
        for (std::uint32_t index = 0; shift != 0 && data.ivars != nullptr && index < data.ivars->count;
             ++index) {
            makeWritable(data.ivars->first[index].offset);
            *data.ivars->first[index].offset += shift;
        }
        return instanceSizes[laidOut] = data.instanceSize + shift;
    }

    void prepare() {
        if (std::exchange(isReady, true)) {
            return;
        }
        for (RuntimeSelector* used = __start_objc_selrefs; used < __stop_objc_selrefs; ++used) {
            *used = unique(*used);
        }
        for (objc_class** each = __start_objc_classlist; each < __stop_objc_classlist; ++each) {
            add(*each, (*each)->data->methods);
            add((*each)->isa, (*each)->isa->data->methods);
        }
        for (RuntimeCategory** each = __start_objc_catlist; each < __stop_objc_catlist; ++each) {
            add((*each)->extended, (*each)->instanceMethods);
            add((*each)->extended->isa, (*each)->classMethods);
        }
        for (objc_class** each = __start_objc_classlist; each < __stop_objc_classlist; ++each) {
            layOut(*each);
        }
    }

    RuntimeMethod own(objc_class* of, RuntimeSelector selector) {
        const auto table = methods.find(of);
        if (table == methods.end()) {
            return nullptr;
        }
        const auto found = table->second.find(selector);
        return found == table->second.end() ? nullptr : found->second;
    }

    RuntimeMethod find(objc_class* from, RuntimeSelector selector) {
        for (; from != nullptr; from = from->superclass) {
            if (const RuntimeMethod method = own(from, selector)) {
                return method;
            }
        }
        return nullptr;
    }

    RuntimeMethod needed(objc_class* from, RuntimeSelector selector) {
        prepare();
        if (const RuntimeMethod method = find(from, selector)) {
            return method;
        }
        die(std::string("no method ") + ((from->data->flags & isMetaclass) != 0 ? "+" : "-") + "[" +
            from->data->name + " " + selector + "]");
    }
};

Registry& registry() {
    static auto* const one = new Registry;
    return *one;
}

using Lock = std::lock_guard<std::recursive_mutex>;

int& countOf(RuntimeObject object) {
    return *reinterpret_cast<int*>(reinterpret_cast<char*>(object) - headerSize);
}

bool isUncounted(RuntimeObject object) {
    return object->isa == &OBJC_CLASS_$_NSConstantText || (object->isa->data->flags & isMetaclass) != 0;
}

bool isBlock(RuntimeObject object) {
    const void* kind = object->isa;
    return kind == _NSConcreteStackBlock || kind == _NSConcreteGlobalBlock || kind == _NSConcreteMallocBlock;
}

/// Blocks on the heap keep the kind that they had on the stack; a flag tells them apart.
bool isOnHeap(RuntimeObject block) {
    return (reinterpret_cast<int*>(block)[2] & (1 << 24)) != 0;
}

void callOwn(objc_class* of, const char* selector, RuntimeObject object) {
    if (const RuntimeMethod method = registry().own(of, registry().unique(selector))) {
        reinterpret_cast<void (*)(RuntimeObject, RuntimeSelector)>(method)(object, nullptr);
    }
}

thread_local std::vector<RuntimeObject> pool;

RuntimeObject* fieldAt(RuntimeObject object, long offset) {
    return reinterpret_cast<RuntimeObject*>(reinterpret_cast<char*>(object) + offset);
}

RuntimeObject copied(RuntimeObject object) {
    if (object == nullptr) {
        return nullptr;
    }
    return isBlock(object) ? static_cast<RuntimeObject>(_Block_copy(object))
                           : objc_msgSend(object, sel_registerName("copy"));
}

void setField(RuntimeObject object, long offset, RuntimeObject value, bool copies) {
    RuntimeObject* const field = fieldAt(object, offset);
    const RuntimeObject before = *field;
    *field = copies ? copied(value) : objc_retain(value);
    objc_release(before);
}

} // namespace

extern "C" {

RuntimeMethod runtimeLookUp(RuntimeObject receiver, RuntimeSelector selector) {
    const Lock lock(registry().mutex);
    return registry().needed(receiver->isa, selector);
}

RuntimeMethod runtimeLookUpSuper(const RuntimeSuper* super, RuntimeSelector selector) {
    const Lock lock(registry().mutex);
    return registry().needed(super->current->superclass, selector);
}

RuntimeSelector sel_registerName(const char* name) {
    const Lock lock(registry().mutex);
    return registry().unique(name);
}

int runtimeObjectsAlive() {
    return registry().objectsAlive;
}

// Objects

RuntimeObject runtimeAllocate(objc_class* ofClass) {
    const Lock lock(registry().mutex);
    registry().prepare();
    auto* const memory = static_cast<char*>(std::calloc(1, headerSize + registry().instanceSizes.at(ofClass)));
    const auto object = reinterpret_cast<RuntimeObject>(memory + headerSize);
    object->isa = ofClass;
    countOf(object) = 1;
    ++registry().objectsAlive;
    std::vector<objc_class*> ancestors;
    for (objc_class* each = ofClass; each != nullptr; each = each->superclass) {
        ancestors.push_back(each);
    }
    std::for_each(ancestors.rbegin(), ancestors.rend(),
                  [object](objc_class* each) { callOwn(each, ".cxx_construct", object); });
    return object;
}

void runtimeDestroy(RuntimeObject object) {
    const Lock lock(registry().mutex);
    for (objc_class* each = object->isa; each != nullptr; each = each->superclass) {
        callOwn(each, ".cxx_destruct", object);
    }
    --registry().objectsAlive;
    std::free(reinterpret_cast<char*>(object) - headerSize);
}

RuntimeObject objc_alloc(objc_class* ofClass) {
    return objc_msgSend(reinterpret_cast<RuntimeObject>(ofClass), sel_registerName("alloc"));
}
RuntimeObject objc_alloc_init(objc_class* ofClass) {
    return objc_msgSend(objc_alloc(ofClass), sel_registerName("init"));
}
RuntimeObject objc_opt_new(objc_class* ofClass) {
    return objc_alloc_init(ofClass);
}
objc_class* objc_opt_class(RuntimeObject object) {
    if (object == nullptr) {
        return nullptr;
    }
    return (object->isa->data->flags & isMetaclass) != 0 ? reinterpret_cast<objc_class*>(object) : object->isa;
}
RuntimeObject objc_opt_self(RuntimeObject object) {
    return object;
}
bool objc_opt_isKindOfClass(RuntimeObject object, objc_class* ofClass) {
    for (objc_class* each = object != nullptr ? object->isa : nullptr; each != nullptr;
         each = each->superclass) {
        if (each == ofClass) {
            return true;
        }
    }
    return false;
}
bool objc_opt_respondsToSelector(RuntimeObject object, RuntimeSelector selector) {
    const Lock lock(registry().mutex);
    registry().prepare();
    return object != nullptr && registry().find(object->isa, registry().unique(selector)) != nullptr;
}

// Counting

RuntimeObject objc_retain(RuntimeObject object) {
    if (object == nullptr) {
        return nullptr;
    }
    if (isBlock(object)) {
        return isOnHeap(object) ? static_cast<RuntimeObject>(_Block_copy(object)) : object;
    }
    const Lock lock(registry().mutex);
    if (!isUncounted(object) && countOf(object)++ <= 0) {
        die(std::string("a dead ") + object->isa->data->name + " is retained");
    }
    return object;
}

void objc_release(RuntimeObject object) {
    if (object == nullptr) {
        return;
    }
    if (isBlock(object)) {
        if (isOnHeap(object)) {
            _Block_release(object);
        }
        return;
    }
    {
        const Lock lock(registry().mutex);
        if (isUncounted(object) || --countOf(object) > 0) {
            return;
        }
        if (countOf(object) < 0) {
            die(std::string("a ") + object->isa->data->name + " is released too often");
        }
        const auto watchers = registry().weakReferences.find(object);
        if (watchers != registry().weakReferences.end()) {
            for (RuntimeObject* reference : watchers->second) {
                *reference = nullptr;
            }
            registry().weakReferences.erase(watchers);
        }
    }
    objc_msgSend(object, sel_registerName("dealloc"));
}

RuntimeObject objc_autorelease(RuntimeObject object) {
    if (object != nullptr) {
        pool.push_back(object);
    }
    return object;
}
void* objc_autoreleasePoolPush() {
    pool.push_back(nullptr);
    return reinterpret_cast<void*>(pool.size());
}
void objc_autoreleasePoolPop(void* mark) {
    const std::size_t kept = reinterpret_cast<std::size_t>(mark) - 1;
    while (pool.size() > kept) {
        const RuntimeObject last = pool.back();
        pool.pop_back();
        objc_release(last);
    }
}
RuntimeObject objc_autoreleaseReturnValue(RuntimeObject object) {
    return objc_autorelease(object);
}
RuntimeObject objc_retainAutoreleasedReturnValue(RuntimeObject object) {
    return objc_retain(object);
}
RuntimeObject objc_unsafeClaimAutoreleasedReturnValue(RuntimeObject object) {
    return object;
}
RuntimeObject objc_retainAutorelease(RuntimeObject object) {
    return objc_autorelease(objc_retain(object));
}
RuntimeObject objc_retainAutoreleaseReturnValue(RuntimeObject object) {
    return objc_autorelease(objc_retain(object));
}
RuntimeObject objc_retainBlock(RuntimeObject block) {
    return block != nullptr ? static_cast<RuntimeObject>(_Block_copy(block)) : nullptr;
}
void objc_storeStrong(RuntimeObject* reference, RuntimeObject value) {
    const RuntimeObject before = *reference;
    *reference = objc_retain(value);
    objc_release(before);
}

// Weak references

RuntimeObject objc_storeWeak(RuntimeObject* reference, RuntimeObject value) {
    const Lock lock(registry().mutex);
    if (*reference != nullptr) {
        registry().weakReferences[*reference].erase(reference);
    }
    if (value != nullptr && !isUncounted(value)) {
        registry().weakReferences[value].insert(reference);
    }
    return *reference = value;
}
RuntimeObject objc_initWeak(RuntimeObject* reference, RuntimeObject value) {
    *reference = nullptr;
    return objc_storeWeak(reference, value);
}
void objc_destroyWeak(RuntimeObject* reference) {
    objc_storeWeak(reference, nullptr);
}
RuntimeObject objc_loadWeakRetained(RuntimeObject* reference) {
    const Lock lock(registry().mutex);
    return objc_retain(*reference);
}
RuntimeObject objc_loadWeak(RuntimeObject* reference) {
    return objc_autorelease(objc_loadWeakRetained(reference));
}
void objc_copyWeak(RuntimeObject* to, RuntimeObject* from) {
    objc_initWeak(to, *from);
}
void objc_moveWeak(RuntimeObject* to, RuntimeObject* from) {
    objc_initWeak(to, *from);
    objc_destroyWeak(from);
}

// Properties

RuntimeObject objc_getProperty(RuntimeObject object, RuntimeSelector, long offset, bool) {
    return objc_retainAutorelease(*fieldAt(object, offset));
}
void objc_setProperty_atomic(RuntimeObject object, RuntimeSelector, RuntimeObject value, long offset) {
    setField(object, offset, value, false);
}
void objc_setProperty_nonatomic(RuntimeObject object, RuntimeSelector, RuntimeObject value, long offset) {
    setField(object, offset, value, false);
}
void objc_setProperty_atomic_copy(RuntimeObject object, RuntimeSelector, RuntimeObject value, long offset) {
    setField(object, offset, value, true);
}
void objc_setProperty_nonatomic_copy(RuntimeObject object, RuntimeSelector, RuntimeObject value, long offset) {
    setField(object, offset, value, true);
}
void objc_copyStruct(void* to, const void* from, long size, bool, bool) {
    std::memcpy(to, from, static_cast<std::size_t>(size));
}
void objc_enumerationMutation(RuntimeObject) {
    die("a collection is changed while it is gone through");
}

} // extern "C"
