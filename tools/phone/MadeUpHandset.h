#pragma once

#include "phone/Call.h"
#include "phone/Commands.h"
#include "phone/Handset.h"

#include <memory>
#include <vector>

namespace velloway::phone {

/// A phone that exists only here: its logs are generated, its one call goes as the computer wants it.
class MadeUpHandset : public Handset {
public:
    MadeUpHandset(Services services, const World& world) : Handset(std::move(services)), world_(world) {}

    void sendIntroduction() override;
    void sendSmsHistory() override;
    void sendCallHistory() override;
    void sendClipboard() override;
    void sendBattery() override;
    void setClipboard(const std::string& text) override { clipboard_ = text; }
    void sendSms(const std::string&, const std::string&, std::int64_t) override {}
    void makeCall(const std::string& number, std::int64_t simSlot) override;
    void answerCall() override;
    void hangUpCall() override;
    void toggleSpeaker(bool) override {}
    void toggleMute(bool) override {}
    void reply(const std::string&, const std::string&) override {}
    void find() override {}
    void pressMediaKey(const std::string&) override {}
    void navigate(const std::string&) override {}
    void fileIsReceived(const std::string&) override {}
    void ring(const std::string& number, const std::string& name) override;

private:
    void sayAll(const std::vector<std::string>& messages) const;
    void sayCommand(const char* command) const;
    void tick();

    World world_;
    Call call_;
    std::shared_ptr<void> timer_;
    std::string clipboard_ = "Code for the door: 4417";
};

} // namespace velloway::phone
