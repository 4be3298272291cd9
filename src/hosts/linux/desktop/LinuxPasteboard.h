#pragma once

#include "platform/Pasteboard.h"

#include <QClipboard>

#include <deque>
#include <memory>

namespace velloway {

class DataControl;
class SelectionReader;

/// The clipboard of the desktop. Main thread, while the QGuiApplication stands.
///
/// A Wayland compositor hides its clipboard from programs without the keyboard. Where it has a protocol for
/// clipboard programs, that is used, with a window in front or not; where it has none, reading and writing fail
/// while no window of the program has the keyboard.
///
/// A read asks the program that owns the clipboard or the selected text. One that is stopped but not gone does
/// not answer for up to 5 seconds per question, twice at most; then the clipboard counts as empty of text. On a
/// Wayland compositor without a protocol for clipboard programs the call itself waits that long.
class LinuxPasteboard : public Pasteboard {
public:
    LinuxPasteboard();
    ~LinuxPasteboard() override;

    void clearContents() override;
    bool setString(std::string_view text) override;
    void readString(std::function<void(std::optional<std::string>)> done) override;
    void readSelection(std::function<void(std::optional<std::string>)> done) override;
    bool isReadable() const override;

private:
    using Done = std::function<void(std::optional<std::string>)>;
    struct Question {
        QClipboard::Mode of;
        Done done;
    };

    void ask(Question question);
    std::optional<std::string> toolkitText(QClipboard::Mode of) const;
    void answerNext();
    void answer(std::optional<std::string> text);
    DataControl* dataControl() const;

    /// Connected with the first use.
    mutable std::unique_ptr<DataControl> dataControl_;
    mutable bool isSoughtFor_ = false;
    std::unique_ptr<SelectionReader> selection_;
    /// In the order in which they asked; the first one is being answered.
    std::deque<Question> waiting_;
};

} // namespace velloway
