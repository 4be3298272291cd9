#include "bridge/FieldText.h"

#include "bridge/Convert.h"

#include <QPointer>

#include <algorithm>

namespace velloway {

namespace {

constexpr std::size_t endBytes = FieldText::wholeBytes / 4;
/// What is typed is shown as it is; only a program types more than this.
constexpr qsizetype longestTyped = qsizetype{2} * FieldText::wholeBytes;

std::size_t bytesOf(QStringView text) {
    return static_cast<std::size_t>(text.toUtf8().size());
}

qsizetype unitsOf(std::string_view text) {
    return toQt(text).size();
}

} // namespace

FieldText::FieldText(Observable<std::string>& text, Pasteboard& pasteboard)
    : text_(text), pasteboard_(pasteboard), changes_(text.observe([this](const std::string&) {
          if (!isEditing_) {
              read();
          }
      })) {
    read();
}

bool FieldText::hasLineBreaks() const {
    const std::string& text = text_.get();
    return text.find('\n') != std::string::npos || text.find('\r') != std::string::npos ||
           text.find("\u2028") != std::string::npos || text.find("\u2029") != std::string::npos;
}

void FieldText::read() {
    undone_.reset();
    const std::string_view text = text_.get();
    if (text.size() <= wholeBytes) {
        shown_ = toQt(text);
        rest_ = -1;
    } else {
        const std::string_view start = head(text, endBytes);
        const std::string_view end = tail(text, endBytes);
        before_ = start.size();
        behind_ = end.size();
        shown_ = toQt(start);
        rest_ = shown_.size();
        shown_ += QChar(0x2026) + toQt(end);
    }
    emit shownChanged();
}

void FieldText::edit(const QString& shown) {
    if (shown == shown_) {
        return;
    }
    isEditing_ = true;
    if (rest_ >= 0) {
        editAroundRest(shown);
    } else if (undone_ && undone_->shown == shown) {
        bringBack();
    } else {
        shown_ = shown;
        text_.set(fromQt(shown));
    }
    isEditing_ = false;
    if (shown_.size() > longestTyped) {
        read();
    } else {
        emit shownChanged();
    }
}

void FieldText::editAroundRest(const QString& shown) {
    const qsizetype rest = restAfter(shown);
    if (rest < 0) {
        undone_ = {.shown = shown_, .rest = rest_, .before = before_, .behind = behind_, .text = text_.get()};
    }
    rest_ = rest;
    shown_ = shown;
    if (rest < 0) {
        text_.set(fromQt(shown));
        return;
    }
    const std::string head = fromQt(shown.left(rest_));
    const std::string tail = fromQt(shown.mid(rest_ + 1));
    text_.modify([&](std::string& text) {
        text.replace(text.size() - behind_, behind_, tail);
        text.replace(0, before_, head);
    });
    before_ = head.size();
    behind_ = tail.size();
}

void FieldText::bringBack() {
    Shortened former = std::move(*undone_);
    undone_.reset();
    shown_ = std::move(former.shown);
    rest_ = former.rest;
    before_ = former.before;
    behind_ = former.behind;
    text_.set(std::move(former.text));
}

qsizetype FieldText::restAfter(const QString& shown) const {
    const auto [oldPart, newPart] = std::mismatch(shown_.begin(), shown_.end(), shown.begin(), shown.end());
    if (oldPart - shown_.begin() > rest_) {
        return rest_;
    }
    const qsizetype fromEnd = shown_.size() - rest_;
    const bool isKept = fromEnd <= shown.end() - newPart &&
                        QStringView(shown_).last(fromEnd) == QStringView(shown).last(fromEnd);
    return isKept ? shown.size() - fromEnd : -1;
}

std::size_t FieldText::offsetOf(qsizetype position) const {
    const QStringView shown(shown_);
    const qsizetype at = std::clamp<qsizetype>(position, 0, shown.size());
    return rest_ >= 0 && at > rest_ ? text_.get().size() - bytesOf(shown.sliced(at)) : bytesOf(shown.first(at));
}

qsizetype FieldText::positionOf(std::size_t offset) const {
    const std::string_view text = text_.get();
    if (rest_ < 0 || offset <= before_) {
        return unitsOf(text.substr(0, offset));
    }
    return offset >= text.size() - behind_ ? shown_.size() - unitsOf(text.substr(offset)) : rest_ + 1;
}

void FieldText::pasteClipboard(QObject* field) {
    pasteboard_.readString(pasteInto(field));
}

void FieldText::pasteSelection(QObject* field) {
    pasteboard_.readSelection(pasteInto(field));
}

FieldText::TextArrives FieldText::pasteInto(QObject* field) {
    return [self = QPointer(this), field = QPointer(field)](std::optional<std::string> text) {
        if (self && field && text && !text->empty()) {
            self->insert(*field, std::move(*text));
        }
    };
}

void FieldText::insert(QObject& field, std::string text) {
    if (rest_ < 0 && text_.get().size() + text.size() <= wholeBytes) {
        // By the field itself, which can undo it.
        QMetaObject::invokeMethod(&field, "replaceSelection", Q_ARG(QString, toQt(text)));
        return;
    }
    const std::size_t from = offsetOf(field.property("selectionStart").toInt());
    const std::size_t to = std::max(from, offsetOf(field.property("selectionEnd").toInt()));
    const std::size_t end = from + text.size();
    if (to - from == text_.get().size()) {
        text_.set(std::move(text));
    } else {
        text_.modify([&](std::string& whole) { whole.replace(from, to - from, text); });
    }
    field.setProperty("cursorPosition", static_cast<int>(positionOf(end)));
}

void FieldText::copy(int start, int end) {
    const std::size_t from = offsetOf(start);
    const std::size_t to = std::max(from, offsetOf(end));
    pasteboard_.clearContents();
    pasteboard_.setString(std::string_view(text_.get()).substr(from, to - from));
}

} // namespace velloway
