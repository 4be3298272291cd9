#pragma once

#include "platform/Pasteboard.h"
#include "platform/Subscription.h"
#include "state/Observable.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace velloway {

/// A text of any length in a field. The toolkit lays out all that a field holds, so a long text shows its two
/// ends, with an ellipsis between them that stands for the rest: the rest goes when the ellipsis is deleted and
/// is copied with it. Positions are those in what is shown. Main thread only; `text` and `pasteboard` must
/// outlive it.
class FieldText : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("A bridge has it.")
    Q_PROPERTY(QString shown READ shown NOTIFY shownChanged)
    Q_PROPERTY(bool isShortened READ isShortened NOTIFY shownChanged)
    /// Anywhere in the text.
    Q_PROPERTY(bool hasLineBreaks READ hasLineBreaks NOTIFY shownChanged)

public:
    /// A text with more bytes than this shows its ends, of which each has a quarter of that.
    static constexpr std::size_t wholeBytes = 8192;

    FieldText(Observable<std::string>& text, Pasteboard& pasteboard);

    QString shown() const { return shown_; }
    bool isShortened() const { return rest_ >= 0; }
    bool hasLineBreaks() const;

    /// The user changed what is shown.
    Q_INVOKABLE void edit(const QString& shown);
    /// Asks for the text of the clipboard, without waiting for it, and puts it in place of what is selected
    /// then in `field`, a Field with this text. Does nothing when there is no text or `field` has gone.
    Q_INVOKABLE void pasteClipboard(QObject* field);
    /// The same with the text that is selected in any window.
    Q_INVOKABLE void pasteSelection(QObject* field);
    /// Copies a part with all that it stands for.
    Q_INVOKABLE void copy(int start, int end);

signals:
    void shownChanged();

private:
    struct Shortened {
        QString shown;
        qsizetype rest = -1;
        std::size_t before = 0;
        std::size_t behind = 0;
        std::string text;
    };

    using TextArrives = std::function<void(std::optional<std::string>)>;

    void read();
    TextArrives pasteInto(QObject* field);
    void insert(QObject& field, std::string text);
    void editAroundRest(const QString& shown);
    void bringBack();
    /// Where the ellipsis is after a change of what is shown; -1 when it is gone.
    qsizetype restAfter(const QString& shown) const;
    std::size_t offsetOf(qsizetype position) const;
    qsizetype positionOf(std::size_t offset) const;

    Observable<std::string>& text_;
    Pasteboard& pasteboard_;
    QString shown_;
    /// Of the ellipsis that stands for the rest; -1 when all is shown.
    qsizetype rest_ = -1;
    /// The bytes of the text before and behind the rest.
    std::size_t before_ = 0;
    std::size_t behind_ = 0;
    /// As it was when the ellipsis was deleted, in case that is undone.
    std::optional<Shortened> undone_;
    bool isEditing_ = false;
    Subscription changes_;
};

} // namespace velloway
