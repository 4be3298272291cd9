# The adapters of the ports, all of which run in tests/hosts/mac/ too: on C interfaces of the platform, and on those of
# Objective-C.
set(mac_c_adapters
    MacAccessibility.cpp
    MacConnection.cpp
    MacDispatchQueue.cpp
    MacInputEvents.cpp
    MacListener.cpp
    MacNetwork.cpp
    MacNetworkError.cpp)
set(mac_objc_adapters
    MacActivity.mm
    MacApplication.mm
    MacDelegate.mm
    MacHost.mm
    MacLoginItem.mm
    MacPasteboard.mm
    MacScripts.mm
    MacStatusItem.mm
    MacSystemImages.mm
    MacUserDefaults.mm
    MacUserNotificationCenter.mm
    MacWindows.mm
    MacWorkspace.mm
    SystemDefinedEvent.mm)
