// EXPECT_STOPS: the statement ends the process with exactly this line on standard error.
#ifndef TESTS_UNIT_VGW_STOPS_H
#define TESTS_UNIT_VGW_STOPS_H

#include <csignal>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#define EXPECT_STOPS(statement, line) \
    EXPECT_EXIT(statement, testing::KilledBySignal(SIGABRT), testing::Eq(line "\n"))

#endif
