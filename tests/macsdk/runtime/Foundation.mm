// The basic classes, as far as the macOS adapters and the fakes need them. Built without automatic counting.
#import <Foundation/Foundation.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

extern "C" {
id runtimeAllocate(Class ofClass);
void runtimeDestroy(id object);
id objc_retain(id object);
void objc_release(id object);
id objc_autorelease(id object);
bool objc_opt_isKindOfClass(id object, Class ofClass);
bool objc_opt_respondsToSelector(id object, SEL selector);
SEL sel_registerName(const char* name);
}

@implementation NSObject
+ (instancetype)alloc {
    return runtimeAllocate(self);
}
+ (instancetype)new {
    return [[self alloc] init];
}
- (instancetype)init {
    return self;
}
- (void)dealloc {
    runtimeDestroy(self);
}
- (id)copy {
    return objc_retain(self);
}
+ (Class)class {
    return self;
}
- (BOOL)isEqual:(id)object {
    return self == object;
}
- (BOOL)isKindOfClass:(Class)aClass {
    return objc_opt_isKindOfClass(self, aClass);
}
- (BOOL)respondsToSelector:(SEL)aSelector {
    return objc_opt_respondsToSelector(self, aSelector);
}
- (NSUInteger)hash {
    return reinterpret_cast<NSUInteger>(self);
}
- (NSString*)description {
    return @"an object";
}
@end

@interface NSText : NSString {
@public
    std::string _text;
}
@end

/// What clang writes for a literal; its fields are fixed by the compiler.
@interface NSConstantText : NSString {
    int _flags;
    const void* _characters;
    long _length;
}
@end
asm(".globl __CFConstantStringClassReference\n"
    ".set __CFConstantStringClassReference, OBJC_CLASS_$_NSConstantText\n");

namespace {

/// Literals with other letters than plain ones are kept in UTF-16.
std::string utf8(const std::uint16_t* units, long count) {
    std::string text;
    for (long index = 0; index < count; ++index) {
        std::uint32_t letter = units[index];
        if (letter >= 0xD800 && letter < 0xDC00 && index + 1 < count) {
            letter = 0x10000 + ((letter - 0xD800) << 10) + (units[++index] - 0xDC00u);
        }
        if (letter < 0x80) {
            text += static_cast<char>(letter);
        } else if (letter < 0x800) {
            text += {static_cast<char>(0xC0 | letter >> 6), static_cast<char>(0x80 | (letter & 63))};
        } else if (letter < 0x10000) {
            text += {static_cast<char>(0xE0 | letter >> 12), static_cast<char>(0x80 | (letter >> 6 & 63)),
                     static_cast<char>(0x80 | (letter & 63))};
        } else {
            text += {static_cast<char>(0xF0 | letter >> 18), static_cast<char>(0x80 | (letter >> 12 & 63)),
                     static_cast<char>(0x80 | (letter >> 6 & 63)), static_cast<char>(0x80 | (letter & 63))};
        }
    }
    return text;
}

bool isUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const auto lead = static_cast<unsigned char>(text[at]);
        const std::size_t length = lead < 0x80       ? 1
                                   : lead >> 5 == 6  ? 2
                                   : lead >> 4 == 14 ? 3
                                   : lead >> 3 == 30 ? 4
                                                     : 0;
        if (length == 0 || at + length > text.size()) {
            return false;
        }
        for (std::size_t next = 1; next < length; ++next) {
            if ((static_cast<unsigned char>(text[at + next]) & 0xC0) != 0x80) {
                return false;
            }
        }
        at += length;
    }
    return true;
}

} // namespace

@implementation NSString
+ (instancetype)alloc {
    return runtimeAllocate(self == [NSString class] ? [NSText class] : self);
}
- (instancetype)initWithBytes:(const void*)bytes length:(NSUInteger)len encoding:(NSUInteger)encoding {
    const std::string_view text(static_cast<const char*>(bytes), len);
    if (encoding != NSUTF8StringEncoding || !isUtf8(text)) {
        objc_release(self);
        return nil;
    }
    static_cast<NSText*>(self)->_text = text;
    return self;
}
- (const char*)UTF8String {
    return static_cast<NSText*>(self)->_text.c_str();
}
- (NSUInteger)lengthOfBytesUsingEncoding:(NSUInteger)encoding {
    return encoding == NSUTF8StringEncoding ? static_cast<NSText*>(self)->_text.size() : 0;
}
- (NSUInteger)length {
    return [self lengthOfBytesUsingEncoding:NSUTF8StringEncoding];
}
- (BOOL)isEqualToString:(NSString*)other {
    return other != nil && std::string_view([self UTF8String]) == [other UTF8String];
}
- (BOOL)isEqual:(id)object {
    return [object isKindOfClass:[NSString class]] && [self isEqualToString:object];
}
- (NSString*)description {
    return self;
}
@end
@implementation NSText
@end
@implementation NSConstantText
- (const char*)UTF8String {
    constexpr int isUtf16 = 0x10;
    if ((_flags & isUtf16) == 0) {
        return static_cast<const char*>(_characters);
    }
    static std::map<const void*, std::string> converted;
    const auto [entry, isNew] = converted.try_emplace(_characters);
    if (isNew) {
        entry->second = utf8(static_cast<const std::uint16_t*>(_characters), _length);
    }
    return entry->second.c_str();
}
- (NSUInteger)lengthOfBytesUsingEncoding:(NSUInteger)encoding {
    return encoding == NSUTF8StringEncoding ? std::string_view([self UTF8String]).size() : 0;
}
@end

SEL NSSelectorFromString(NSString* name) {
    return sel_registerName([name UTF8String]);
}

@implementation NSNumber {
    NSInteger _value;
}
+ (NSNumber*)numberWithInteger:(NSInteger)value {
    NSNumber* number = objc_autorelease([[self alloc] init]);
    number->_value = value;
    return number;
}
+ (NSNumber*)numberWithInt:(int)value {
    return [self numberWithInteger:value];
}
- (NSInteger)integerValue {
    return _value;
}
@end

@implementation NSArray {
@public
    std::vector<id> _objects;
}
+ (instancetype)arrayWithObjects:(const id[])objects count:(NSUInteger)cnt {
    NSArray* array = objc_autorelease([[self alloc] init]);
    for (NSUInteger index = 0; index < cnt; ++index) {
        array->_objects.push_back(objc_retain(objects[index]));
    }
    return array;
}
- (NSUInteger)count {
    return _objects.size();
}
- (id)firstObject {
    return _objects.empty() ? nil : _objects.front();
}
- (id)objectAtIndexedSubscript:(NSUInteger)idx {
    return _objects.at(idx);
}
- (BOOL)containsObject:(id)object {
    for (id each : _objects) {
        if ([each isEqual:object]) {
            return YES;
        }
    }
    return NO;
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id[])__attribute__((unused))buffer
                                    count:(NSUInteger)__attribute__((unused))len {
    static unsigned long neverChanged;
    if (state->state != 0) {
        return 0;
    }
    state->state = 1;
    state->itemsPtr = _objects.data();
    state->mutationsPtr = &neverChanged;
    return _objects.size();
}
- (void)dealloc {
    for (id each : _objects) {
        objc_release(each);
    }
    [super dealloc];
}
@end
@implementation NSMutableArray
- (void)addObject:(id)object {
    _objects.push_back(objc_retain(object));
}
@end

@implementation NSSet {
    NSArray* _members;
}
+ (instancetype)setWithArray:(NSArray*)array {
    NSSet* set = objc_autorelease([[self alloc] init]);
    set->_members = objc_retain(array);
    return set;
}
- (NSUInteger)count {
    return [_members count];
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id[])buffer
                                    count:(NSUInteger)len {
    return [_members countByEnumeratingWithState:state objects:buffer count:len];
}
- (void)dealloc {
    objc_release(_members);
    [super dealloc];
}
@end

@implementation NSDictionary {
    std::vector<std::pair<id, id>> _entries;
}
+ (instancetype)dictionaryWithObjects:(const id[])objects
                              forKeys:(const id<NSCopying>[])keys
                                count:(NSUInteger)cnt {
    NSDictionary* dictionary = objc_autorelease([[self alloc] init]);
    for (NSUInteger index = 0; index < cnt; ++index) {
        dictionary->_entries.emplace_back(objc_retain(keys[index]), objc_retain(objects[index]));
    }
    return dictionary;
}
- (NSString*)description {
    std::string text = "{";
    for (const auto& [key, value] : _entries) {
        text +=
            " " + std::string([[key description] UTF8String]) + " = " + [[value description] UTF8String] + ";";
    }
    text += " }";
    return objc_autorelease([[NSString alloc] initWithBytes:text.data()
                                                     length:text.size()
                                                   encoding:NSUTF8StringEncoding]);
}
- (void)dealloc {
    for (const auto& [key, value] : _entries) {
        objc_release(key);
        objc_release(value);
    }
    [super dealloc];
}
@end

extern "C" {
id __NSArray0__;
id __NSDictionary0__;
}
/// What clang uses for empty literals.
__attribute__((constructor)) static void makeEmptyCollections() {
    __NSArray0__ = [[NSArray alloc] init];
    __NSDictionary0__ = [[NSDictionary alloc] init];
}
