#pragma once

#include "fakes/Journal.h"
#include "platform/Accessibility.h"
#include "platform/Application.h"
#include "platform/Host.h"
#include "platform/LoginItem.h"
#include "platform/Memory.h"
#include "platform/Pasteboard.h"
#include "platform/StatusItem.h"
#include "platform/Windows.h"
#include "platform/Workspace.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace velloway::test {

/// A host whose clock only the test moves.
class FakeHost : public Host {
public:
    std::optional<std::string> localizedName() const override { return name; }
    std::optional<std::filesystem::path> downloadsDirectory() const override { return downloads; }
    Instant now() const override { return time; }
    std::string locale() const override { return "en_GB"; }
    std::string timeZone() const override { return zone; }
    std::optional<std::vector<NetworkInterface>> networkInterfaces() const override { return interfaces; }
    std::vector<std::string> interfacePrefixes() const override { return {"en"}; }

    std::optional<std::string> name = "Desk";
    std::optional<std::filesystem::path> downloads;
    /// Far from UTC, so that a text made in the wrong zone is noticed.
    std::string zone = "Asia/Kolkata";
    Instant time = Instant(std::chrono::seconds(1'700'000'000));
    std::optional<std::vector<NetworkInterface>> interfaces = std::vector<NetworkInterface>{};
};

class FakePasteboard : public Pasteboard {
public:
    explicit FakePasteboard(Journal* journal = nullptr) : journal_(journal) {}

    void clearContents() override {
        note("pasteboard clear");
        content.reset();
    }
    bool setString(std::string_view text) override {
        if (isLocked) {
            return false;
        }
        note("pasteboard set " + std::string(text));
        content = std::string(text);
        return true;
    }
    void readString(std::function<void(std::optional<std::string>)> done) override {
        answer(std::move(done), content);
    }
    void readSelection(std::function<void(std::optional<std::string>)> done) override {
        answer(std::move(done), selection);
    }
    bool isReadable() const override { return !isLocked; }
    /// Answers what was asked while `isSlow`.
    void answerOpen() {
        for (const auto& each : std::exchange(open_, {})) {
            each();
        }
    }

    std::optional<std::string> content;
    /// The text that is selected in some window.
    std::optional<std::string> selection;
    /// As while the owner of the clipboard does not answer.
    bool isSlow = false;
    /// As on a desktop that lets only the program in front use its clipboard.
    bool isLocked = false;

private:
    using Done = std::function<void(std::optional<std::string>)>;

    void note(std::string entry) {
        if (journal_) {
            journal_->note(std::move(entry));
        }
    }
    void answer(Done done, const std::optional<std::string>& text) {
        const auto step = [this, done = std::move(done), &text] { done(isLocked ? std::nullopt : text); };
        if (isSlow) {
            open_.emplace_back(step);
        } else {
            step();
        }
    }

    Journal* journal_;
    std::vector<std::function<void()>> open_;
};

class FakeMemory : public Memory {
public:
    void giveBack() override { ++timesGivenBack; }

    int timesGivenBack = 0;
};

class FakeAccessibility : public Accessibility {
public:
    explicit FakeAccessibility(Journal* journal = nullptr) : journal_(journal) {}

    bool isTrusted() override {
        ++checks;
        return trusted;
    }
    bool isTrustedWithPrompt() override {
        ++prompts;
        if (journal_) {
            journal_->note("accessibility prompt");
        }
        return trusted;
    }

    bool trusted = true;
    int checks = 0;
    int prompts = 0;

private:
    Journal* journal_;
};

class FakeLoginItem : public LoginItem {
public:
    LoginItemStatus status() const override { return current; }
    std::optional<std::string> registerItem() override {
        if (!error) {
            current = LoginItemStatus::enabled;
        }
        return error;
    }
    std::optional<std::string> unregisterItem() override {
        if (!error) {
            current = LoginItemStatus::notRegistered;
        }
        return error;
    }

    LoginItemStatus current = LoginItemStatus::notRegistered;
    std::optional<std::string> error;
};

class FakeStatusItem : public StatusItem {
public:
    explicit FakeStatusItem(Journal* journal = nullptr) : journal_(journal) {}

    void create() override { note("status item"); }
    bool hasButton() const override { return button; }
    bool hasImage(const StatusImage& candidate) const override {
        return availableImages.find(candidate.name) != availableImages.end();
    }
    void setImage(const StatusImage& newImage) override { image = newImage; }
    void setMenu(const std::vector<MenuItem>& items) override {
        note("menu");
        menu = items;
    }
    void setItemTitle(int tag, const std::string& title) override {
        for (MenuItem& item : menu) {
            if (item.tag == tag) {
                item.title = title;
                return;
            }
        }
    }

    /// Chooses the entry with this title, as a user would.
    void choose(std::string_view title) {
        for (const MenuItem& item : menu) {
            if (item.title == title && item.isEnabled && item.onChosen) {
                const auto chosen = item.onChosen;
                chosen();
                return;
            }
        }
    }

    bool button = true;
    std::set<std::string> availableImages{"StatusIcon", "antenna.radiowaves.left.and.right"};
    std::optional<StatusImage> image;
    std::vector<MenuItem> menu;

private:
    void note(std::string entry) {
        if (journal_) {
            journal_->note(std::move(entry));
        }
    }

    Journal* journal_;
};

class FakeApplication : public Application {
public:
    explicit FakeApplication(Journal* journal = nullptr) : journal_(journal) {}

    void setServicesProvider(ServicesProvider* newProvider) override {
        note("services provider");
        provider = newProvider;
    }
    void setActivationPolicy(ActivationPolicy newPolicy) override {
        note(newPolicy == ActivationPolicy::regular ? "policy regular" : "policy accessory");
        policy = newPolicy;
    }
    void activate() override { note("activate"); }
    int runModal(const Alert& alert) override {
        note("alert " + alert.messageText);
        alerts.push_back(alert);
        return alertAnswer;
    }

    ServicesProvider* provider = nullptr;
    std::optional<ActivationPolicy> policy;
    std::vector<Alert> alerts;
    /// The place of the button that the user takes.
    int alertAnswer = 1;

private:
    void note(std::string entry) {
        if (journal_) {
            journal_->note(std::move(entry));
        }
    }

    Journal* journal_;
};

class FakeWindow : public Window {
public:
    FakeWindow(std::string name, Journal* journal) : name_(std::move(name)), journal_(journal) {}

    bool isVisible() const override { return visible; }
    void center() override { note("center"); }
    void makeKeyAndOrderFront() override {
        visible = true;
        note("makeKeyAndOrderFront");
    }
    void orderFrontRegardless() override {
        visible = true;
        note("orderFrontRegardless");
    }
    void orderOut() override {
        visible = false;
        note("orderOut");
    }
    void setIsVisible(bool newVisible) override {
        visible = newVisible;
        note(newVisible ? "setIsVisible true" : "setIsVisible false");
    }
    void setFrameOrigin(double x, double y) override {
        origin = {x, y};
        note("setFrameOrigin");
    }
    void setContent(std::shared_ptr<WindowContent> newContent) override {
        content = std::move(newContent);
        note("setContent");
    }

    bool visible = false;
    std::pair<double, double> origin{0, 0};
    std::shared_ptr<WindowContent> content;
    std::function<void()> onClose;

private:
    void note(const char* what) {
        if (journal_) {
            journal_->note(name_ + " " + what);
        }
    }

    std::string name_;
    Journal* journal_;
};

class FakeWindows : public Windows {
public:
    explicit FakeWindows(Journal* journal = nullptr) : journal_(journal) {}
    ~FakeWindows() override {
        // A panel's buttons hold their owner, which holds the panel; with the desktop gone, nothing shows it.
        for (const auto& panel : panels) {
            panel->content.reset();
        }
    }

    std::shared_ptr<Window> makeMainWindow(const MainWindowProperties& properties,
                                           std::shared_ptr<WindowContent> content,
                                           std::function<void()> onClose) override {
        mainProperties.push_back(properties);
        mainWindow = std::make_shared<FakeWindow>("main window", journal_);
        mainWindow->content = std::move(content);
        mainWindow->onClose = std::move(onClose);
        return mainWindow;
    }
    std::shared_ptr<Window> makePanel(const PanelProperties& properties,
                                      std::shared_ptr<WindowContent> content) override {
        panelProperties.push_back(properties);
        auto panel = std::make_shared<FakeWindow>("panel " + std::to_string(panelProperties.size()), journal_);
        panel->content = std::move(content);
        panels.push_back(panel);
        return panel;
    }
    std::optional<Rect> mainScreenVisibleFrame() const override { return visibleFrame; }
    void beginOpenPanel(const OpenPanelOptions& options,
                        std::function<void(std::optional<std::vector<std::filesystem::path>>)> done) override {
        openPanelOptions = options;
        openPanelDone = std::move(done);
    }

    /// As when the user closes the main window.
    void closeMainWindow() {
        mainWindow->visible = false;
        mainWindow->onClose();
    }

    std::vector<MainWindowProperties> mainProperties;
    std::shared_ptr<FakeWindow> mainWindow;
    std::vector<PanelProperties> panelProperties;
    std::vector<std::shared_ptr<FakeWindow>> panels;
    std::optional<Rect> visibleFrame = Rect{0, 0, 1440, 875};
    std::optional<OpenPanelOptions> openPanelOptions;
    std::function<void(std::optional<std::vector<std::filesystem::path>>)> openPanelDone;

private:
    Journal* journal_;
};

class FakeWorkspace : public Workspace {
public:
    void open(std::string_view address) override { opened.emplace_back(address); }
    void openSettings(SettingsPane pane) override { panes.push_back(pane); }
    void activateFileViewerSelecting(const std::filesystem::path& file) override { revealed.push_back(file); }

    std::vector<std::string> opened;
    std::vector<SettingsPane> panes;
    std::vector<std::filesystem::path> revealed;
};

} // namespace velloway::test
