#pragma once

#include "platform/SystemImages.h"
#include "platform/Windows.h"

#include <QQuickView>

#include <memory>

class QQmlEngine;

namespace velloway {

/// Sets up an engine for the views: their images. Once per engine. An image that the system does not have is
/// the project's own; without `systemImages` that is every one.
void prepareEngine(QQmlEngine& engine, std::shared_ptr<const SystemImages> systemImages = nullptr);

/// Gives the application fonts that together cover every script, for desktops whose own font may not.
void useFontsForEveryScript();

/// A window with the view of one of the core's values in it, not yet shown. The engine must outlive it.
class ContentView : public QQuickView {
    Q_OBJECT

public:
    ContentView(QQmlEngine& engine, std::shared_ptr<WindowContent> content);
    ~ContentView() override;

    void setContent(std::shared_ptr<WindowContent> content);

protected:
    void exposeEvent(QExposeEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    struct Bridges;
    std::unique_ptr<Bridges> bridges_;
};

} // namespace velloway
