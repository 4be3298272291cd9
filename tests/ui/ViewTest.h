#pragma once

#include "ui/ViewHarness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velloway::test {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// A program with real views. A test fails when a view complains while it runs.
class ViewTest : public testing::Test, public ViewHarness {
protected:
    ViewTest() {
        complaints().clear();
        previous_ =
            qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& message) {
                if (type != QtDebugMsg && type != QtInfoMsg) {
                    complaints().push_back(message.toStdString());
                }
            });
    }
    ~ViewTest() override {
        qInstallMessageHandler(previous_);
        EXPECT_THAT(complaints(), IsEmpty());
    }

private:
    static std::vector<std::string>& complaints() {
        static std::vector<std::string> heard;
        return heard;
    }
    QtMessageHandler previous_;
};

} // namespace velloway::test
