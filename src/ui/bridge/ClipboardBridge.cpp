#include "bridge/ClipboardBridge.h"

#include <QClipboard>
#include <QGuiApplication>

namespace velloway {

namespace {

bool isCut(const ClipboardRow& row) {
    return shownPart(row.text).size() < row.text.size();
}

} // namespace

ClipboardBridge::ClipboardBridge(ClipboardModel& model)
    : TabBridge(QStringLiteral("ClipboardTab.qml")),
      model_(model),
      rows_(this, [](const ClipboardRow& row) { return row.id.text(); },
            {{"rowId", [](const ClipboardRow& row) { return row.id.text(); }},
             {"text", [](const ClipboardRow& row) { return withEllipsis(shownPart(row.text), isCut(row)); }},
             {"isCut", &isCut},
             {"date", &ClipboardRow::date}}) {
    follow(model.rows, [this] {
        rows_.assign(model_.rows.get());
        show(showsClear_, model_.showsClear(), &ClipboardBridge::showsClearChanged);
    });
}

void ClipboardBridge::copyFrom(const QString& id, int start) {
    if (const ClipboardRow* row = rows_.find(fromQt(id))) {
        QGuiApplication::clipboard()->setText(toQt(row->text).mid(start));
    }
}

void ClipboardBridge::copyToClipboard(const QString& id) {
    if (const ClipboardRow* row = rows_.find(fromQt(id))) {
        model_.copyToClipboard(row->id);
    }
}

} // namespace velloway
