// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <functional>
#include <stdexcept>

#include "handler_requests.h"
#include "oids.h"
#include "snmp_utils.h"
#include "zorva_api_exception.h"

namespace {

const char *const kInstance = oids::power;

Netsnmp_Node_Handler *const answerSeven = [](auto... arguments) { return HandleIntMib(ASN_INTEGER, 7, arguments...); };
Netsnmp_Node_Handler *const answerUnsigned = [](auto... arguments) {
    return HandleIntMib(ASN_UNSIGNED, 40, arguments...);
};
Netsnmp_Node_Handler *const answerText = [](auto... arguments) { return HandleStringMib("a\0b"s, arguments...); };
Netsnmp_Node_Handler *const throwError = [](auto...) -> int { throw std::runtime_error("no room"); };

snmp_variable object(Netsnmp_Node_Handler *handler, int modes = HANDLER_CAN_GETANDGETNEXT) {
    return {"power", handler, oid_power, OID_LENGTH(oid_power), modes};
}

class FrameTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
    }
};

} // namespace

TEST(ScaleValues, MapsToTheNearestIntegerHalvesAwayFromZero) {
    EXPECT_EQ(ScaleValues(32768, 0, 65535, 0, 100), 50);
    EXPECT_EQ(ScaleValues(65535, 0, 65535, -170000, 170000), 170000);
    EXPECT_EQ(ScaleValues(0, 0, 65535, -170000, 170000), -170000);
    EXPECT_EQ(ScaleValues(1, 0, 2, 0, 1), 1);
    EXPECT_EQ(ScaleValues(-1, 0, 2, 0, 1), -1);
}

TEST(ScaleValues, DoesNotClamp) {
    EXPECT_EQ(ScaleValues(20, 0, 10, 0, 100), 200);
    EXPECT_EQ(ScaleValues(-5, 0, 10, 0, 100), -50);
    EXPECT_EQ(ScaleValues(128, 0, 127, 0, 127), 128);
}

TEST(ScaleValues, PassesThroughSinglePrecision) {
    EXPECT_EQ(ScaleValues(16777216, 0, 16777216, 0, 16777216), 16777216);
    EXPECT_EQ(ScaleValues(16777217, 0, 16777217, 0, 16777217), 16777216);
    EXPECT_EQ(ScaleValues(100000001, 0, 1, 0, 1), 100000000);
}

TEST(ScaleValues, HasADefinedResultForAnEmptyRange) {
    EXPECT_EQ(ScaleValues(5, 5, 5, 0, 100), 0);
    EXPECT_EQ(ScaleValues(6, 5, 5, 0, 100), INT_MAX);
    EXPECT_EQ(ScaleValues(4, 5, 5, 0, 100), INT_MIN);
    EXPECT_EQ(ScaleValues(INT_MAX, 0, 1, INT_MIN, INT_MAX), INT_MAX);
    EXPECT_EQ(ScaleValues(INT_MIN, 0, 1, INT_MIN, INT_MAX), INT_MIN);
}

TEST(UshortSwapEndian, SwapsTheOctets) {
    EXPECT_EQ(ushort_swap_endian(0x1234), 0x3412);
    EXPECT_EQ(ushort_swap_endian(0xFF00), 0x00FF);
}

TEST_F(FrameTest, AnExceptionOfAHandlerIsAnsweredWithGenErr) {
    ASSERT_TRUE(registerScalar(object(throwError)));
    core().clearRecord();
    EXPECT_EQ(get(kInstance).returned, SNMP_ERR_GENERR);
    EXPECT_THAT(core().logs(), ElementsAre(LogLine{3, "power: no room"}));
}

TEST_F(FrameTest, HandleIntMibSetsTheTypeThatItIsGiven) {
    EXPECT_THAT(Request(kInstance).run(answerUnsigned, MODE_GET), isInteger(40, ASN_UNSIGNED));
}

TEST_F(FrameTest, HandleStringMibSetsTheTextAsItIs) {
    EXPECT_THAT(Request(kInstance).run(answerText, MODE_GET), isOctets("a\0b"s));
}

TEST_F(FrameTest, BothAnswerGenErrForAnyModeButGetAndLeaveTheRequest) {
    for (const int mode : modesExcept({MODE_GET})) {
        for (Netsnmp_Node_Handler *handler : {answerSeven, answerText}) {
            const Answer answer = Request(kInstance).run(handler, mode);
            EXPECT_THAT(answer, isRefused(SNMP_ERR_GENERR, SNMP_ERR_NOERROR)) << mode;
            EXPECT_EQ(answer.type, ASN_NULL) << mode;
        }
    }
}

namespace {

/** Row and column of a request for a cell, with the table information that the agent's table helper attaches. */
std::pair<int, int> cellOf(std::string_view dotted, unsigned int column) {
    Request request(dotted);
    netsnmp_table_request_info info{};
    info.colnum = column;
    netsnmp_request_add_list_data(request.info(),
                                  netsnmp_create_data_list(TABLE_HANDLER_NAME, &info, [](void * /*data*/) {}));
    int row = -7;
    int col = -7;
    GetRowAndColFromRequest(request.info(), row, col);
    return {row, col};
}

} // namespace

TEST_F(FrameTest, TheRowIsTheThirteenthSubIdentifier) {
    EXPECT_EQ(cellOf("1.3.6.1.4.1.99999.1.3.1.1.3.5", 3), std::make_pair(5, 3));
    EXPECT_EQ(cellOf("1.3.6.1.4.1.99999.1.3.1.1.2.0", 2), std::make_pair(0, 2));
    EXPECT_EQ(cellOf("1.3.6.1.4.1.99999.1.3.1.1.3.2147483647", 3), std::make_pair(INT_MAX, 3));
    EXPECT_EQ(cellOf("1.3.6.1.4.1.99999.1.3.1.1.3.4294967295", 3), std::make_pair(-1, 3));
    EXPECT_EQ(cellOf("1.3.6.1.4.1.99999.1.3.1.1.3.5.6.7", 3), std::make_pair(5, 3));
}

TEST_F(FrameTest, ARequestWithoutARowHasNoCell) {
    EXPECT_EQ(cellOf(oids::alarmStatesState, 3), std::make_pair(0, 0));
    Request withoutTable("1.3.6.1.4.1.99999.1.3.1.1.3.5");
    int row = -7;
    int col = -7;
    GetRowAndColFromRequest(withoutTable.info(), row, col);
    EXPECT_EQ(row, 0);
    EXPECT_EQ(col, 0);
}

TEST_F(FrameTest, AnApiExceptionNamesItsStatus) {
    const zorva::core::ZorvaApiException error("Failed zorva api call: x()", 42);
    EXPECT_STREQ(error.what(), "Failed zorva api call: x() (status 42)");
    EXPECT_EQ(error.status, 42);
    EXPECT_EQ(zorva::core::ZorvaApiException::formatMessage("text", 0), "text (status 0)");
    EXPECT_EQ(zorva::core::ZorvaApiException::formatMessage("text", -3), "text (status -3)");
}

TEST_F(FrameTest, AFailedCallIsNamedAsItIsWritten) {
    core().targets("iris", {"iris/1"});
    core().fail("zorva_api_iris_set_velocity_send", 9);
    void *gApiCookie = nullptr;
    const auto textOf = [](const std::function<void()> &call) {
        try {
            call();
        } catch (const std::exception &error) {
            return std::string(error.what());
        }
        return "no exception"s;
    };
    EXPECT_EQ(textOf([&] { ZORVA_API_CALL(zorva_api_iris_set_velocity_send( gApiCookie, "iris/1", 0 ,
                                                                   1)); }),
              "Failed zorva api call: zorva_api_iris_set_velocity_send( gApiCookie, \"iris/1\", 0 , 1) (status 9)");
    EXPECT_EQ(textOf([&] { ZORVA_API_CALL(zorva_api_iris_set_velocity_send(
                      gApiCookie, "iris/1", 0, 1)); }),
              "Failed zorva api call: zorva_api_iris_set_velocity_send( gApiCookie, \"iris/1\", 0, 1) (status 9)");
}

TEST(CoreUtils, OpensAndClosesTheLibraryInOrder) {
    scripted::core().reset();
    EXPECT_EQ(InitUtils(), 0);
    EXPECT_EQ(scripted::core().nameOf(GetLogCookie()), "log");
    EXPECT_EQ(scripted::core().nameOf(GetIpcCookie()), "ipc");
    DeinitUtils();
    EXPECT_THAT(scripted::core().calls(),
                ElementsAre("zorva_core_init()", "zorva_core_logging_init(\"SNMP\", &)",
                            "zorva_core_ipc_initiator_init(log, null, &)", "zorva_core_ipc_deinit(ipc)",
                            "zorva_core_logging_deinit(log)", "zorva_core_deinit()"));
    EXPECT_THAT(scripted::core().logs(), IsEmpty());
}

TEST(CoreUtils, GoesOnAfterAFailureAndReturnsTheStatusOfTheIpc) {
    scripted::core().reset();
    scripted::core().fail("zorva_core_init", 3);
    scripted::core().fail("zorva_core_ipc_initiator_init", 4);
    EXPECT_EQ(InitUtils(), 4);
    EXPECT_EQ(scripted::core().calls().size(), 3U);
    EXPECT_THAT(scripted::core().logs(), IsEmpty());
    DeinitUtils();
}
