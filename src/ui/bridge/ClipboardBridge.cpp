#include "bridge/ClipboardBridge.h"

namespace velloway {

ClipboardBridge::ClipboardBridge(ClipboardModel& model)
    : TabBridge(QStringLiteral("ClipboardTab.qml")),
      model_(model),
      rows_(this, [](const ClipboardRow& row) { return row.id.text(); },
            {{"rowId", [](const ClipboardRow& row) { return row.id.text(); }},
             {"text", &ClipboardRow::text},
             {"date", &ClipboardRow::date}}) {
    follow(model.rows, [this] {
        rows_.assign(model_.rows.get());
        show(showsClear_, model_.showsClear(), &ClipboardBridge::showsClearChanged);
    });
}

void ClipboardBridge::copyToClipboard(const QString& id) {
    if (const ClipboardRow* row = rows_.find(fromQt(id))) {
        model_.copyToClipboard(row->id);
    }
}

} // namespace velloway
