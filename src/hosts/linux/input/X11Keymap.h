#pragma once

#include "hosts/linux/input/X11Connection.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace velloway {

/// Which key to press, and whether Shift must be held around it.
struct X11KeyPress {
    std::uint8_t keycode = 0;
    bool isShifted = false;
};

/// What the server's synthetic keyboard can type, and a few of its unused keys on loan for what it can't.
///
/// Only the synthetic keyboard is changed, never the user's own. The root window carries a note of what is on
/// loan, so that the next process can give it back if this one is killed.
class X11Keymap {
public:
    /// The connection must outlive this object. Gives back what an earlier process left behind.
    explicit X11Keymap(X11Connection& connection);

    bool isUsable() const { return isUsable_; }

    /// Reads the keys and the chosen layout again; anybody may have changed them. False when the server is
    /// gone.
    bool refresh();

    // As of the last refresh or borrow:
    /// A key that yields `keysym` without Shift.
    std::optional<X11KeyPress> find(std::uint32_t keysym) const;
    /// A key that types this character.
    std::optional<X11KeyPress> findCharacter(char32_t character) const;
    /// How many more keysyms can be borrowed.
    std::size_t available() const;
    bool isLending() const { return !loans_.empty(); }

    /// Puts the keysyms on unused keys, all in one change; there must be enough of them available.
    void borrow(std::span<const std::uint32_t> keysyms);
    void giveBack();
    /// Makes the keys on loan available for the next `borrow`, which must follow. The change is one then, and
    /// not two, which counts: every program reads the whole keymap after each.
    void recycle();

    /// The keys that are down and change what others mean.
    std::vector<std::uint8_t> heldModifiers() const;
    bool isCapsLocked() const { return isCapsLocked_; }
    void setCapsLocked(bool isLocked);

private:
    /// One key in the server's own terms.
    struct Key {
        std::array<std::uint8_t, 4> types{};
        std::uint8_t groupInfo = 0;
        std::uint8_t width = 0;
        std::vector<std::uint32_t> keysyms;
        bool operator==(const Key&) const = default;
    };
    struct Loan {
        std::uint8_t keycode = 0;
        Key original;
        Key borrowed;
    };

    static Key keyWith(std::uint32_t plain, std::uint32_t shifted);
    static std::vector<std::uint32_t> noteOf(const std::vector<Loan>& loans);
    static std::vector<Loan> loansOf(std::span<const std::uint32_t> note);

    std::uint16_t findSyntheticKeyboard();
    void recover();
    void index();
    void indexKey(std::uint8_t keycode, const Key& key);
    void dropStaleLoans();
    void write(std::span<const std::uint8_t> keycodes);
    void writeNote();

    X11Connection& connection_;
    bool isUsable_ = false;
    std::uint16_t device_ = 0;
    xcb_atom_t noteAtom_ = XCB_NONE;

    std::uint8_t firstKeycode_ = 0;
    std::uint8_t lastKeycode_ = 0;
    std::vector<Key> keys_;
    std::vector<std::uint8_t> modifierMap_;
    unsigned group_ = 0;
    bool isCapsLocked_ = false;
    std::vector<std::uint8_t> unused_;
    std::unordered_map<std::uint32_t, X11KeyPress> byKeysym_;
    std::unordered_map<char32_t, X11KeyPress> byCharacter_;
    std::vector<Loan> loans_;
    /// Changed since the last write.
    std::vector<std::uint8_t> recycled_;
};

} // namespace velloway
