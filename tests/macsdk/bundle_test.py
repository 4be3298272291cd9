#!/usr/bin/env python3
"""Compares what the macOS bundle declares with the code that answers to it."""
import json
import pathlib
import plistlib
import re
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]


def plist(name):
    text = (TOP / "packaging/mac" / name).read_text()
    text = text.replace("${PROJECT_VERSION}", "1.0.0").replace("${MACOSX_BUNDLE_EXECUTABLE_NAME}", "Velloway")
    assert "${" not in text, "a variable that CMake does not fill in"
    return plistlib.loads(text.encode())


class BundleTest(unittest.TestCase):
    info = plist("Info.plist.in")
    delegate = (TOP / "src/hosts/mac/MacDelegate.mm").read_text()
    bundle = (TOP / "packaging/mac/bundle.cmake").read_text()

    def test_says_who_it_is_and_starts_in_the_background(self):
        self.assertEqual(self.info["CFBundleIdentifier"], "org.velloway.Velloway")
        self.assertIs(self.info["LSUIElement"], True)
        self.assertIs(self.info["NSHighResolutionCapable"], True)
        self.assertEqual(self.info["CFBundlePackageType"], "APPL")

    def test_runs_from_the_system_that_it_is_built_for(self):
        presets = json.loads((TOP / "CMakePresets.json").read_text())["configurePresets"]
        mac = next(preset for preset in presets if preset["name"] == "mac")
        self.assertEqual(self.info["LSMinimumSystemVersion"], "13.0")
        self.assertEqual(mac["cacheVariables"]["CMAKE_OSX_DEPLOYMENT_TARGET"], "13.0")

    def test_the_service_leads_to_a_selector_of_the_delegate(self):
        (service,) = self.info["NSServices"]
        selector = service["NSMessage"] + ":userData:error:"
        method = re.search(r"- \(void\)(handle\w+):\(NSPasteboard\*\)\w+\s+(\w+):\([^)]*\)[^:]*?\s+(\w+):",
                           self.delegate)
        self.assertIsNotNone(method)
        self.assertEqual(selector, ":".join(method.groups()) + ":")
        self.assertEqual(service["NSPortName"], self.info["CFBundleName"])
        self.assertEqual(service["NSSendFileTypes"], ["public.item"])
        self.assertTrue(service["NSMenuItem"]["default"])

    def test_asks_for_what_it_uses(self):
        for use in ("NSAppleEventsUsageDescription", "NSLocalNetworkUsageDescription"):
            self.assertGreater(len(self.info[use]), 20, use)
        rights = plist("Velloway.entitlements")
        self.assertEqual(rights, {"com.apple.security.automation.apple-events": True,
                                  "com.apple.security.cs.allow-jit": True})

    def test_a_signature_without_a_certificate_may_load_the_libraries_of_the_bundle(self):
        self.assertEqual(plist("VellowayAdHoc.entitlements"),
                         plist("Velloway.entitlements") | {"com.apple.security.cs.disable-library-validation": True})

    def test_the_service_is_offered_without_being_switched_on(self):
        (service,) = self.info["NSServices"]
        self.assertEqual(service["NSRequiredContext"], {})

    def test_names_images_that_the_build_makes(self):
        self.assertIn(self.info["CFBundleIconFile"], self.bundle)
        self.assertIn("StatusIcon.png", self.bundle)
        self.assertIn("StatusIcon@2x.png", self.bundle)
        self.assertIn(f"OUTPUT_NAME {self.info['CFBundleExecutable']}", self.bundle)


if __name__ == "__main__":
    unittest.main()
