#include "shell/StatusMenu.h"

namespace velloway {

const std::array<MenuEntry, 15> statusMenuEntries{{
    {MenuCommand::none, "Velloway", "", 0, ""},
    {MenuCommand::separator, "", "", 0, ""},
    {MenuCommand::none, "Server: starting…", "", statusLineTag, ""},
    {MenuCommand::separator, "", "", 0, ""},
    {MenuCommand::call, "Call…", "c", 0, "onMenuCall"},
    {MenuCommand::sms, "Send SMS…", "s", 0, "onMenuSms"},
    {MenuCommand::fileDrop, "File Drop…", "f", 0, "onMenuFileDrop"},
    {MenuCommand::history, "Notifications…", "y", 0, "onMenuHistory"},
    {MenuCommand::remote, "Remote Control…", "r", 0, "onMenuRemote"},
    {MenuCommand::sendClipboard, "Send Clipboard", "v", 0, "onMenuSendClipboard"},
    {MenuCommand::clipboardHistory, "Clipboard History…", "h", 0, "onMenuClipboardHistory"},
    {MenuCommand::settings, "Settings…", ",", 0, "onMenuSettings"},
    {MenuCommand::info, "Info…", "i", 0, "onMenuInfo"},
    {MenuCommand::separator, "", "", 0, ""},
    {MenuCommand::quit, "Quit Velloway", "q", 0, ""},
}};

} // namespace velloway
