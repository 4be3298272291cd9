#include "hosts/linux/notifications/NotificationText.h"

#include <algorithm>

namespace velloway {

namespace {

bool isShown(QChar c) {
    return c == u'\n' || c == u'\t' || c.category() != QChar::Other_Control;
}

} // namespace

NotificationCapabilities NotificationCapabilities::from(const QStringList& names) {
    return {.body = names.contains(u"body"),
            .bodyMarkup = names.contains(u"body-markup"),
            .actions = names.contains(u"actions"),
            .inlineReply = names.contains(u"inline-reply"),
            .originName = names.contains(u"x-kde-origin-name")};
}

QString displayableText(const std::string& text, qsizetype limit) {
    QString shown = QString::fromUtf8(text.data(), qsizetype(std::min(text.size(), readBytes(limit))));
    shown.removeIf([](QChar c) { return !isShown(c); });
    if (shown.size() > limit) {
        shown.truncate(limit - 1);
        if (shown.back().isHighSurrogate()) {
            shown.chop(1);
        }
        shown += u'…';
    }
    return shown;
}

NotificationText notificationText(const NotificationContent& content,
                                  const NotificationCapabilities& capabilities) {
    const QString title = displayableText(content.title, titleLimit);
    QString subtitle = displayableText(content.subtitle.value_or(""), titleLimit);
    QString body = displayableText(content.body, bodyLimit);

    if (!capabilities.body) {
        QStringList pieces{title, subtitle, body.replace(u'\n', u' ')};
        pieces.removeAll(QString());
        return {pieces.join(QStringLiteral(" – ")), {}};
    }
    if (capabilities.bodyMarkup) {
        body = body.toHtmlEscaped();
        if (!subtitle.isEmpty()) {
            subtitle = QStringLiteral("<b>%1</b>").arg(subtitle.toHtmlEscaped());
        }
    }
    QStringList lines{subtitle, body};
    lines.removeAll(QString());
    return {title, lines.join(u'\n')};
}

} // namespace velloway
