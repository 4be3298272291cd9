#include "hosts/linux/input/X11Keymap.h"

#include <xcb/xinput.h>
// The header has a keyword of C++ as a field name.
#define explicit explicitField
#include <xcb/xkb.h>
#undef explicit
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

namespace velloway {

namespace {

constexpr std::uint16_t coreKeyboard = XCB_XKB_ID_USE_CORE_KBD;
/// The second of the four key types that every keymap has: two levels, chosen by Shift.
constexpr std::uint8_t twoLevelType = 1;
constexpr std::uint8_t keypadType = 3;

/// Function keys and the number pad; what they type depends on more than Shift.
bool isFunctionKeysym(std::uint32_t keysym) {
    return keysym >= 0xFD00 && keysym <= 0xFFFF;
}

/// Which of its groups a key uses when `group` is chosen; keys with fewer groups say themselves what holds.
unsigned effectiveGroup(unsigned group, std::uint8_t groupInfo) {
    const unsigned count = groupInfo & 0x0FU;
    if (group < count) {
        return group;
    }
    switch (groupInfo & 0xC0U) {
    case XCB_XKB_GROUPS_WRAP_CLAMP_INTO_RANGE:
        return count - 1;
    case XCB_XKB_GROUPS_WRAP_REDIRECT_INTO_RANGE: {
        const unsigned target = groupInfo >> 4U & 0x03U;
        return target < count ? target : 0;
    }
    default:
        return group % count;
    }
}

template <class Value> void append(std::vector<std::uint8_t>& bytes, const Value& value) {
    const auto* begin = reinterpret_cast<const std::uint8_t*>(&value);
    bytes.insert(bytes.end(), begin, begin + sizeof(Value));
}

} // namespace

X11Keymap::X11Keymap(X11Connection& connection) : connection_(connection) {
    if (!connection_.isUsable()) {
        return;
    }
    xcb_connection_t* server = connection_.get();
    const X11Reply<xcb_xkb_use_extension_reply_t> extension(
        xcb_xkb_use_extension_reply(server, xcb_xkb_use_extension(server, 1, 0), nullptr));
    if (!extension || extension->supported == 0) {
        return;
    }
    constexpr std::string_view noteName = "_VELLOWAY_BORROWED_KEYS";
    const X11Reply<xcb_intern_atom_reply_t> atom(
        xcb_intern_atom_reply(server, xcb_intern_atom(server, 0, noteName.size(), noteName.data()), nullptr));
    if (!atom) {
        return;
    }
    noteAtom_ = atom->atom;
    device_ = findSyntheticKeyboard();
    isUsable_ = refresh();
    if (isUsable_) {
        recover();
    }
}

/// The device that the test extension types on; the core keyboard stands in when that device is unknown.
std::uint16_t X11Keymap::findSyntheticKeyboard() {
    xcb_connection_t* server = connection_.get();
    const X11Reply<xcb_input_xi_query_version_reply_t> version(
        xcb_input_xi_query_version_reply(server, xcb_input_xi_query_version(server, 2, 0), nullptr));
    const X11Reply<xcb_input_xi_query_device_reply_t> devices(
        version ? xcb_input_xi_query_device_reply(
                      server, xcb_input_xi_query_device(server, XCB_INPUT_DEVICE_ALL), nullptr)
                : nullptr);
    if (!devices) {
        return coreKeyboard;
    }
    for (auto each = xcb_input_xi_query_device_infos_iterator(devices.get()); each.rem > 0;
         xcb_input_xi_device_info_next(&each)) {
        const std::string_view name(xcb_input_xi_device_info_name(each.data), each.data->name_len);
        if (each.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD && name.ends_with("XTEST keyboard")) {
            return each.data->deviceid;
        }
    }
    return coreKeyboard;
}

bool X11Keymap::refresh() {
    xcb_connection_t* server = connection_.get();
    constexpr std::uint16_t parts = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
    const auto mapCookie =
        xcb_xkb_get_map(server, device_, parts, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    const auto stateCookie = xcb_xkb_get_state(server, coreKeyboard);
    const X11Reply<xcb_xkb_get_map_reply_t> map(xcb_xkb_get_map_reply(server, mapCookie, nullptr));
    const X11Reply<xcb_xkb_get_state_reply_t> state(xcb_xkb_get_state_reply(server, stateCookie, nullptr));
    if (!map || !state) {
        return false;
    }

    group_ = state->group;
    isCapsLocked_ = (state->lockedMods & XCB_MOD_MASK_LOCK) != 0;
    firstKeycode_ = map->minKeyCode;
    lastKeycode_ = map->maxKeyCode;
    keys_.assign(lastKeycode_ - firstKeycode_ + 1U, Key{});
    modifierMap_.assign(keys_.size(), 0);

    xcb_xkb_get_map_map_t content;
    xcb_xkb_get_map_map_unpack(xcb_xkb_get_map_map(map.get()), map->nTypes, map->nKeySyms, map->nKeyActions,
                               map->totalActions, map->totalKeyBehaviors, map->virtualMods,
                               map->totalKeyExplicit, map->totalModMapKeys, map->totalVModMapKeys, map->present,
                               &content);
    std::size_t place = map->firstKeySym - firstKeycode_;
    for (auto each = xcb_xkb_get_map_map_syms_rtrn_iterator(map.get(), &content); each.rem > 0;
         xcb_xkb_key_sym_map_next(&each), ++place) {
        Key& key = keys_.at(place);
        std::copy(std::begin(each.data->kt_index), std::end(each.data->kt_index), key.types.begin());
        key.groupInfo = each.data->groupInfo;
        key.width = each.data->width;
        const xcb_keysym_t* keysyms = xcb_xkb_key_sym_map_syms(each.data);
        key.keysyms.assign(keysyms, keysyms + each.data->nSyms);
    }
    for (auto each = xcb_xkb_get_map_map_modmap_rtrn_iterator(map.get(), &content); each.rem > 0;
         xcb_xkb_key_mod_map_next(&each)) {
        modifierMap_.at(each.data->keycode - firstKeycode_) = each.data->mods;
    }
    dropStaleLoans();
    index();
    return true;
}

/// Somebody who loads a whole new keymap has taken our keys back.
void X11Keymap::dropStaleLoans() {
    const auto dropped = std::erase_if(loans_, [&](const Loan& loan) {
        return loan.keycode < firstKeycode_ || loan.keycode > lastKeycode_ ||
               keys_[loan.keycode - firstKeycode_] != loan.borrowed;
    });
    if (dropped > 0) {
        writeNote();
    }
}

void X11Keymap::index() {
    unused_.clear();
    byKeysym_.clear();
    byCharacter_.clear();
    for (std::size_t place = 0; place < keys_.size(); ++place) {
        const Key& key = keys_[place];
        const auto keycode = static_cast<std::uint8_t>(firstKeycode_ + place);
        const bool hasKeysyms = std::any_of(key.keysyms.begin(), key.keysyms.end(),
                                            [](std::uint32_t keysym) { return keysym != 0; });
        if (hasKeysyms) {
            indexKey(keycode, key);
        } else if (modifierMap_[place] == 0) {
            unused_.push_back(keycode);
        }
    }
}

void X11Keymap::indexKey(std::uint8_t keycode, const Key& key) {
    if ((key.groupInfo & 0x0FU) == 0 || key.width == 0) {
        return;
    }
    const unsigned group = effectiveGroup(group_, key.groupInfo);
    const std::size_t start = std::size_t{group} * key.width;
    for (std::size_t level = 0; level < std::min<std::size_t>(key.width, 2); ++level) {
        if (start + level >= key.keysyms.size()) {
            break;
        }
        const std::uint32_t keysym = key.keysyms[start + level];
        const X11KeyPress press{.keycode = keycode, .isShifted = level == 1};
        if (keysym == XKB_KEY_NoSymbol) {
            continue;
        }
        if (!press.isShifted) {
            byKeysym_.try_emplace(keysym, press);
        }
        const char32_t character = xkb_keysym_to_utf32(keysym);
        if (character == 0 || isFunctionKeysym(keysym) || key.types[group] == keypadType) {
            continue;
        }
        // A key that needs no Shift is better than one that does.
        const auto [place, isNew] = byCharacter_.try_emplace(character, press);
        if (!isNew && place->second.isShifted && !press.isShifted) {
            place->second = press;
        }
    }
}

std::optional<X11KeyPress> X11Keymap::find(std::uint32_t keysym) const {
    const auto found = byKeysym_.find(keysym);
    return found != byKeysym_.end() ? std::optional(found->second) : std::nullopt;
}

std::optional<X11KeyPress> X11Keymap::findCharacter(char32_t character) const {
    const auto found = byCharacter_.find(character);
    return found != byCharacter_.end() ? std::optional(found->second) : std::nullopt;
}

std::size_t X11Keymap::available() const {
    return unused_.size() * 2;
}

X11Keymap::Key X11Keymap::keyWith(std::uint32_t plain, std::uint32_t shifted) {
    return {.types = {twoLevelType, 0, 0, 0}, .groupInfo = 1, .width = 2, .keysyms = {plain, shifted}};
}

void X11Keymap::borrow(std::span<const std::uint32_t> keysyms) {
    std::vector<std::uint8_t> keycodes = std::exchange(recycled_, {});
    for (std::size_t taken = 0; taken < keysyms.size() && !unused_.empty(); taken += 2) {
        const std::uint8_t keycode = unused_.back();
        unused_.pop_back();
        const std::uint32_t plain = keysyms[taken];
        const std::uint32_t shifted = taken + 1 < keysyms.size() ? keysyms[taken + 1] : plain;
        Key& key = keys_[keycode - firstKeycode_];
        loans_.push_back({.keycode = keycode, .original = key, .borrowed = keyWith(plain, shifted)});
        key = loans_.back().borrowed;
        indexKey(keycode, key);
        keycodes.push_back(keycode);
    }
    // The note is there before the loan, whenever the process ends.
    writeNote();
    write(keycodes);
}

void X11Keymap::recycle() {
    for (const Loan& loan : loans_) {
        keys_[loan.keycode - firstKeycode_] = loan.original;
        recycled_.push_back(loan.keycode);
    }
    loans_.clear();
    index();
}

void X11Keymap::giveBack() {
    recycle();
    write(std::exchange(recycled_, {}));
    writeNote();
    // Whoever looks at the keymap next, over whatever connection, finds it as it was.
    connection_.sync();
}

/// Sends the range from the first to the last of these keys in one request, so that every client reads the
/// keymap anew only once. The keys in between go back as they came.
void X11Keymap::write(std::span<const std::uint8_t> keycodes) {
    if (keycodes.empty()) {
        return;
    }
    const auto [first, last] = std::minmax_element(keycodes.begin(), keycodes.end());
    std::vector<std::uint8_t> values;
    std::size_t keysymCount = 0;
    for (unsigned keycode = *first; keycode <= *last; ++keycode) {
        const Key& key = keys_[keycode - firstKeycode_];
        append(values, key.types);
        append(values, key.groupInfo);
        append(values, key.width);
        append(values, static_cast<std::uint16_t>(key.keysyms.size()));
        for (const std::uint32_t keysym : key.keysyms) {
            append(values, keysym);
        }
        keysymCount += key.keysyms.size();
    }
    xcb_xkb_set_map(connection_.get(), device_, XCB_XKB_MAP_PART_KEY_SYMS, 0, firstKeycode_, lastKeycode_, 0, 0,
                    *first, static_cast<std::uint8_t>(*last - *first + 1),
                    static_cast<std::uint16_t>(keysymCount), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                    values.data());
    connection_.flush();
}

std::vector<std::uint8_t> X11Keymap::heldModifiers() const {
    constexpr unsigned locks = XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2;
    const X11Reply<xcb_query_keymap_reply_t> down(
        xcb_query_keymap_reply(connection_.get(), xcb_query_keymap(connection_.get()), nullptr));
    std::vector<std::uint8_t> held;
    for (std::size_t place = 0; down && place < modifierMap_.size(); ++place) {
        const auto keycode = static_cast<std::uint8_t>(firstKeycode_ + place);
        if ((modifierMap_[place] & ~locks) != 0 && (down->keys[keycode / 8] >> (keycode % 8) & 1) != 0) {
            held.push_back(keycode);
        }
    }
    return held;
}

void X11Keymap::setCapsLocked(bool isLocked) {
    xcb_xkb_latch_lock_state(connection_.get(), coreKeyboard, XCB_MOD_MASK_LOCK,
                             isLocked ? XCB_MOD_MASK_LOCK : 0, 0, 0, 0, 0, 0);
    isCapsLocked_ = isLocked;
}

// The note: for each loan the key's number, then the original and the borrowed key, each as its types, its
// group information with its width and count, and its keysyms.

std::vector<std::uint32_t> X11Keymap::noteOf(const std::vector<Loan>& loans) {
    std::vector<std::uint32_t> note;
    const auto put = [&](const Key& key) {
        note.push_back(key.types[0] | static_cast<std::uint32_t>(key.types[1]) << 8U |
                       static_cast<std::uint32_t>(key.types[2]) << 16U |
                       static_cast<std::uint32_t>(key.types[3]) << 24U);
        note.push_back(key.groupInfo | static_cast<std::uint32_t>(key.width) << 8U |
                       static_cast<std::uint32_t>(key.keysyms.size()) << 16U);
        note.insert(note.end(), key.keysyms.begin(), key.keysyms.end());
    };
    for (const Loan& loan : loans) {
        note.push_back(loan.keycode);
        put(loan.original);
        put(loan.borrowed);
    }
    return note;
}

std::vector<X11Keymap::Loan> X11Keymap::loansOf(std::span<const std::uint32_t> note) {
    const auto take = [&](std::uint32_t& value) {
        if (note.empty()) {
            return false;
        }
        value = note.front();
        note = note.subspan(1);
        return true;
    };
    const auto takeKey = [&](Key& key) {
        std::uint32_t types = 0;
        std::uint32_t form = 0;
        if (!take(types) || !take(form) || note.size() < form >> 16U) {
            return false;
        }
        for (unsigned group = 0; group < key.types.size(); ++group) {
            key.types[group] = static_cast<std::uint8_t>(types >> 8U * group);
        }
        key.groupInfo = static_cast<std::uint8_t>(form);
        key.width = static_cast<std::uint8_t>(form >> 8U);
        key.keysyms.assign(note.begin(), note.begin() + (form >> 16U));
        note = note.subspan(form >> 16U);
        return true;
    };
    std::vector<Loan> loans;
    std::uint32_t keycode = 0;
    for (Loan loan; take(keycode) && takeKey(loan.original) && takeKey(loan.borrowed); loan = {}) {
        loan.keycode = static_cast<std::uint8_t>(keycode);
        loans.push_back(std::move(loan));
    }
    return loans;
}

void X11Keymap::writeNote() {
    if (loans_.empty()) {
        xcb_delete_property(connection_.get(), connection_.root(), noteAtom_);
    } else {
        const auto note = noteOf(loans_);
        xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, connection_.root(), noteAtom_,
                            XCB_ATOM_CARDINAL, 32, static_cast<std::uint32_t>(note.size()), note.data());
    }
    connection_.flush();
}

/// Gives back what a process that was killed had borrowed. Keys that have changed since are left alone.
void X11Keymap::recover() {
    xcb_connection_t* server = connection_.get();
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        server, xcb_get_property(server, 0, connection_.root(), noteAtom_, XCB_ATOM_CARDINAL, 0, 0x10000),
        nullptr));
    if (!reply || reply->format != 32) {
        return;
    }
    const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    loans_ = loansOf({values, reply->value_len});
    dropStaleLoans();
    // It may have been killed between a press and a release.
    for (const Loan& loan : loans_) {
        connection_.fakeInput(XCB_KEY_RELEASE, loan.keycode);
    }
    if (const auto shift = find(XKB_KEY_Shift_L)) {
        connection_.fakeInput(XCB_KEY_RELEASE, shift->keycode);
    }
    giveBack();
}

} // namespace velloway
