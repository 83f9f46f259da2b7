#include "tests/ResponseParserTest.h"

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(ResponseParserTest, EndsWith1AtOnceWhenNoLinkIsOpen) {
    SerialLinkOpen = 0;
    EXPECT_EQ(1u, Parse(1000));
    EXPECT_THAT(os.Calls(), IsEmpty());
    SerialLinkOpen = 1;
}

TEST_F(ResponseParserTest, EndsWith1AtOnceWhenTheSerialHandleIsInvalid) {
    SerialPortHandle = platform::kInvalidPort;
    EXPECT_EQ(1u, Parse(1000));
    SerialPortHandle = 3;
}

TEST_F(ResponseParserTest, GoesOnWithoutASerialHandleWhileTheWirelessLinkIsOpen) {
    ClosePrinter();
    OpenWirelessLink();
    EXPECT_EQ(std::nullopt, Parse(1000));
}

TEST_F(ResponseParserTest, EndsWith1AtTheNextPassWhenTheLinkIsClosed) {
    os.After(120, [] { SerialLinkOpen = 0; });
    EXPECT_EQ(1u, Parse(1000));
    EXPECT_EQ(205u, os.Now());
    SerialLinkOpen = 1;
}

TEST_F(ResponseParserTest, EndsWith0WhenToldToStop) {
    ReceiveThreadRunning = 0;
    Queue({'0'});
    EXPECT_EQ(0u, Parse(1000));
    EXPECT_THAT(os.Calls(), ElementsAre("Sleep(50)"));
    EXPECT_THAT(os.Notifications(), IsEmpty());
}

TEST_F(ResponseParserTest, EndsWith0WhenTheReceiveThreadHasEnded) {
    os.EndThread(0, 1);
    Queue({'0'});
    EXPECT_EQ(0u, Parse(1000));
    EXPECT_THAT(os.Calls(), ElementsAre("Sleep(50)", "WaitForThread(thread 1, 50)"));
    EXPECT_THAT(os.Notifications(), IsEmpty());
}

TEST_F(ResponseParserTest, EndsWith0WhenTheReceiveThreadEndsDuringTheWait) {
    os.After(70, [this] { os.EndThread(0, 1); });
    EXPECT_EQ(0u, Parse(1000));
    EXPECT_EQ(1u, os.CountOf("WaitForThread"));
}

TEST_F(ResponseParserTest, AnIdlePassPausesFourTimes) {
    Parse(250);
    EXPECT_THAT(os.Calls(), ElementsAre("Sleep(50)", "WaitForThread(thread 1, 50)", "Sleep(5)", "Sleep(100)",
                                        "Sleep(50)"));
}

TEST_F(ResponseParserTest, APassWithATextReplyDrainsTheQueueAndPauses) {
    StatusPending = 1;
    Queue({0x16, 0x17});
    Parse(kPassMs);
    EXPECT_THAT(os.Calls(), ElementsAre("Sleep(50)", "WaitForThread(thread 1, 50)", "Sleep(5)",
                                        "PostNotification(0x00530002)", "Sleep(100)", "Sleep(50)"));
    EXPECT_THAT(Replies(), ElementsAre("S 2 response 16 17"));
}

TEST_F(ResponseParserTest, APassWithAnUnclaimedByteOnlyPauses) {
    Queue({'A'});
    Parse(200);
    EXPECT_THAT(os.Calls(),
                ElementsAre("Sleep(50)", "WaitForThread(thread 1, 50)", "Sleep(100)", "Sleep(50)"));
}

TEST_F(ResponseParserTest, APassWithCardDataWaitsForTheWholeTrack) {
    Queue({0x1B, 0x01});
    Parse(kPassMs + 500);
    EXPECT_THAT(os.Calls(), ElementsAre("Sleep(50)", "WaitForThread(thread 1, 50)", "Sleep(500)", "Sleep(5)",
                                        "PostNotification(0x004E0002)", "Sleep(100)", "Sleep(50)"));
}

TEST_F(ResponseParserTest, APassWithAFramedReplyPauses) {
    Queue({0xC0, 0x06});
    Parse(200);
    EXPECT_THAT(os.Calls(), ElementsAre("Sleep(50)", "WaitForThread(thread 1, 50)",
                                        "PostNotification(0x00060000)", "Sleep(100)", "Sleep(50)"));
}

TEST_F(ResponseParserTest, PostsTheRegisteredMessage) {
    RepliesTo({'0'});
    ASSERT_THAT(os.Notifications(), SizeIs(1));
    EXPECT_EQ(0xC0DEu, os.Notifications()[0].message);
    EXPECT_EQ(0x00540001u, os.Notifications()[0].wParam);
}

TEST_F(ResponseParserTest, AZeroByteIsDiscarded) {
    EXPECT_THAT(RepliesTo({0x00}), IsEmpty());
    EXPECT_EQ(0, ReceiveQueue->Count());
}

TEST_F(ResponseParserTest, AZeroByteClaimsNoRequest) {
    ModelNamePending = 1;
    StatusPending = 1;
    EXPECT_THAT(RepliesTo({0x00}), IsEmpty());
    EXPECT_EQ(1, ModelNamePending);
    EXPECT_EQ(1, StatusPending);
}

TEST_F(ResponseParserTest, WhatFollowsAZeroByteIsClassifiedInTheNextPass) {
    ModelNamePending = 1;
    EXPECT_THAT(RepliesTo({0x00, 'A', 'B'}), ElementsAre("D 2 response 41 42"));
}

TEST_F(ResponseParserTest, AModelNameIsPostedAsDWithoutItsZeros) {
    ModelNamePending = 1;
    EXPECT_THAT(RepliesTo({'A', 0x00, 'B', 0x00, 0x00, 'C', 0x00}), ElementsAre("D 3 response 41 42 43"));
    EXPECT_EQ(0, ModelNamePending);
    EXPECT_EQ(3, ResponseLength);
}

TEST_F(ResponseParserTest, AStatusIsPostedAsS) {
    StatusPending = 1;
    EXPECT_THAT(RepliesTo({0x16}), ElementsAre("S 1 response 16"));
    EXPECT_EQ(0, StatusPending);
}

TEST_F(ResponseParserTest, WhatWasQueuedBeforeTheQuestionAnswersItAllTheSame) {
    Queue({0x16});
    GetFirmwareVersion();
    EXPECT_THAT(RepliesTo({}), ElementsAre("D 1 response 16"));
    EXPECT_EQ(0, FirmwarePending);
}

TEST_F(ResponseParserTest, AFirmwareVersionIsPostedAsD) {
    FirmwarePending = 1;
    EXPECT_THAT(RepliesTo({'1', '.', '2'}), ElementsAre("D 3 response 31 2E 32"));
    EXPECT_EQ(0, FirmwarePending);
}

TEST_F(ResponseParserTest, APrintOutReportIsPostedAsTAndDisarms) {
    PrintOutStatusArmed = 1;
    EXPECT_THAT(RepliesTo({'x', 'y'}), ElementsAre("T 2 response 78 79"));
    EXPECT_EQ(0, PrintOutStatusArmed);
}

TEST_F(ResponseParserTest, AReplyThatBeginsWithADigitZeroIsPostedAsT) {
    EXPECT_THAT(RepliesTo({'0', 0x00, '1'}), ElementsAre("T 2 response 30 31"));
}

TEST_F(ResponseParserTest, ADigitZeroAnswersAPendingStatus) {
    StatusPending = 1;
    EXPECT_THAT(RepliesTo({'0'}), ElementsAre("S 1 response 30"));
}

TEST_F(ResponseParserTest, OnAFramedLinkAPlainReplyAnswersNoStatus) {
    FramedMode = 1;
    StatusPending = 1;
    EXPECT_THAT(RepliesTo({0x16}), IsEmpty());
    EXPECT_THAT(RepliesTo({'0'}), IsEmpty());
    EXPECT_EQ(1, StatusPending);
    PrintOutStatusArmed = 1;
    EXPECT_THAT(RepliesTo({'x'}), ElementsAre("T 1 response 78"));
    StatusPending = 0;
    RepliesTo({'0'});
    EXPECT_EQ("T 1 response 30", Replies().back());
}

TEST_F(ResponseParserTest, OnAFramedLinkModelNameAndFirmwareAreAnsweredPlainToo) {
    FramedMode = 1;
    ModelNamePending = 1;
    FirmwarePending = 1;
    os.After(400, [] { Queue({'2'}); });
    EXPECT_THAT(RepliesTo({'1'}), ElementsAre("D 1 response 31", "D 1 response 32"));
}

TEST_F(ResponseParserTest, OutstandingRequestsAreAnsweredInAFixedOrder) {
    ModelNamePending = 1;
    StatusPending = 1;
    FirmwarePending = 1;
    PrintOutStatusArmed = 1;
    for (uint8_t reply = 1; reply < 5; ++reply)
        os.After(400u * reply, [reply] { Queue({static_cast<uint8_t>('a' + reply)}); });
    EXPECT_THAT(RepliesTo({'a'}, 2500),
                ElementsAre("D 1 response 61", "S 1 response 62", "D 1 response 63", "T 1 response 64"));
}

TEST_F(ResponseParserTest, OneReplyAnswersOneRequest) {
    StatusPending = 1;
    FirmwarePending = 1;
    EXPECT_THAT(RepliesTo({0x16, 0x17}), ElementsAre("S 2 response 16 17"));
    EXPECT_EQ(1, FirmwarePending);
}

TEST_F(ResponseParserTest, OnlyTheFlagThatClaimsTheReplyIsCleared) {
    ModelNamePending = 1;
    StatusPending = 1;
    FirmwarePending = 1;
    PrintOutStatusArmed = 1;
    Queue({'a'});
    os.OnCall("PostNotification", [] { EXPECT_EQ(0, ModelNamePending); });
    Parse(300);
    EXPECT_EQ(0, ModelNamePending);
    EXPECT_EQ(1, StatusPending);
    EXPECT_EQ(1, FirmwarePending);
    EXPECT_EQ(1, PrintOutStatusArmed);
}

TEST_F(ResponseParserTest, AnUnclaimedByteIsDroppedAloneAndTheNextIsClassified) {
    EXPECT_THAT(RepliesTo({'A', 'B', '0', 'C'}), ElementsAre("T 2 response 30 43"));
}

TEST_F(ResponseParserTest, EveryOrdinaryFirstByteIsClaimedByARequest) {
    for (int value = 1; value < 256; ++value) {
        if (value == 0x02 || value == 0x1B || value == 0xC0)
            continue;
        ModelNamePending = 1;
        RepliesTo({static_cast<uint8_t>(value)}, kPassMs);
        ASSERT_EQ(0, ModelNamePending) << value;
        ASSERT_EQ("D 1 response " + HexOf({static_cast<uint8_t>(value)}), Replies().back());
    }
}

TEST_F(ResponseParserTest, AReplyEndsWhereTheQueueIsFoundEmpty) {
    StatusPending = 1;
    FirmwarePending = 1;
    os.After(101, [] { Queue({'b'}); });
    EXPECT_THAT(RepliesTo({'a'}), ElementsAre("S 1 response 61", "D 1 response 62"));
}

TEST_F(ResponseParserTest, BytesThatComeBeforeThePassAreOneReply) {
    StatusPending = 1;
    os.After(99, [] { Queue({'b', 'c'}); });
    EXPECT_THAT(RepliesTo({'a'}), ElementsAre("S 3 response 61 62 63"));
}

TEST_F(ResponseParserTest, APairReplyKeepsItsZeros) {
    EXPECT_THAT(RepliesTo({0x1B, 0x04, 0x00, 'A', 0x00}), ElementsAre("D 5 response 1B 04 00 41 00"));
    EXPECT_EQ(5, ResponseLength);
}

TEST_F(ResponseParserTest, AnStxPairIsAPairAsWell) {
    EXPECT_THAT(RepliesTo({0x02, 0xFF, 'A'}), ElementsAre("D 3 response 02 FF 41"));
}

TEST_F(ResponseParserTest, CardDataKeepsItsZerosAndHasABufferOfItsOwn) {
    EXPECT_THAT(RepliesTo({0x1B, 0x00, 0x00, 'A', 0x00}), ElementsAre("N 5 card 1B 00 00 41 00"));
    EXPECT_EQ(0, ResponseLength);
}

TEST_F(ResponseParserTest, CardDataBeginsWithEscOrStxAnd0To3) {
    for (const uint8_t first : {uint8_t{0x1B}, uint8_t{0x02}})
        for (uint8_t second = 0; second < 6; ++second) {
            RepliesTo({first, second, 'A'}, 800);
            EXPECT_EQ((second <= 3 ? "N 3 card " : "D 3 response ") + HexOf({first, second, 'A'}),
                      Replies().back());
        }
}

TEST_F(ResponseParserTest, CardDataLeavesTheResponseLengthAlone) {
    ResponseLength = 7;
    RepliesTo({0x02, 0x01, 'A'});
    EXPECT_EQ(7, ResponseLength);
}

TEST_F(ResponseParserTest, CardDataCollectsWhatComesWithin500Milliseconds) {
    os.After(590, [] { Queue({'B', 0x00}); });
    EXPECT_THAT(RepliesTo({0x1B, 0x01, 'A'}), ElementsAre("N 5 card 1B 01 41 42 00"));
}

TEST_F(ResponseParserTest, OnAFramedLinkCardDataIsAPair) {
    FramedMode = 1;
    EXPECT_THAT(RepliesTo({0x1B, 0x01, 0x00, 'A'}), ElementsAre("D 4 response 1B 01 00 41"));
    EXPECT_THAT(os.CallsOf({"Sleep"}), testing::Not(testing::Contains("Sleep(500)")));
}

TEST_F(ResponseParserTest, PairsClaimNoRequest) {
    ModelNamePending = 1;
    StatusPending = 1;
    FirmwarePending = 1;
    PrintOutStatusArmed = 1;
    RepliesTo({0x1B, 0x01}, 800);
    RepliesTo({0x02, 0x09}, 800);
    EXPECT_THAT(Replies(), ElementsAre("N 2 card 1B 01", "D 2 response 02 09"));
    EXPECT_EQ(1, ModelNamePending);
    EXPECT_EQ(1, StatusPending);
    EXPECT_EQ(1, FirmwarePending);
    EXPECT_EQ(1, PrintOutStatusArmed);
}

TEST_F(ResponseParserTest, ALeadByteAloneIsTakenWithAZero) {
    EXPECT_THAT(RepliesTo({0x1B}), ElementsAre("N 2 card 1B 00"));
}

TEST_F(ResponseParserTest, ALeadByteAloneIsTakenWithTheSecondByteOfThePairBefore) {
    os.After(900, [] { Queue({0x02}); });
    EXPECT_THAT(RepliesTo({0x1B, 0x09, 'A'}), ElementsAre("D 3 response 1B 09 41", "D 2 response 02 09"));
}

TEST_F(ResponseParserTest, AFramedPairDoesNotChangeTheSecondByteThatIsKept) {
    os.After(900, [] { Queue({0xC0, 0x1B, 0x55}); });
    os.After(1500, [] { Queue({0x1B}); });
    EXPECT_THAT(RepliesTo({0x1B, 0x09}),
                ElementsAre("D 2 response 1B 09", "D 2 response 1B 55", "D 2 response 1B 09"));
}

TEST_F(ResponseParserTest, ATextReplyOf1024BytesIsStoredWhole) {
    ModelNamePending = 1;
    RepliesTo(Long(1024, {'A'}));
    ASSERT_THAT(os.Notifications(), SizeIs(1));
    EXPECT_EQ(0x00440400u, os.Notifications()[0].wParam);
    EXPECT_EQ(Long(1024, {'A'}), os.Notifications()[0].bytes);
}

TEST_F(ResponseParserTest, ALongerTextReplyIsCutAndTheQueueIsDrained) {
    ModelNamePending = 1;
    RepliesTo(Long(5000, {'A'}));
    ASSERT_THAT(os.Notifications(), SizeIs(1));
    EXPECT_EQ(0x00440400u, os.Notifications()[0].wParam);
    EXPECT_EQ(1024, ResponseLength);
    EXPECT_EQ(0, ReceiveQueue->Count());
}

TEST_F(ResponseParserTest, ALongerPairReplyIsCutAndTheQueueIsDrained) {
    RepliesTo(Long(5000, {0x1B, 0x05}));
    ASSERT_THAT(os.Notifications(), SizeIs(1));
    EXPECT_EQ(0x00440400u, os.Notifications()[0].wParam);
    EXPECT_EQ(Long(1024, {0x1B, 0x05}), os.Notifications()[0].bytes);
    EXPECT_EQ(0, ReceiveQueue->Count());
}

TEST_F(ResponseParserTest, CardDataOf2048BytesIsStoredWhole) {
    RepliesTo(Long(2048, {0x1B, 0x01}));
    ASSERT_THAT(os.Notifications(), SizeIs(1));
    EXPECT_EQ(0x004E0800u, os.Notifications()[0].wParam);
    EXPECT_EQ(Long(2048, {0x1B, 0x01}), os.Notifications()[0].bytes);
}

TEST_F(ResponseParserTest, LongerCardDataIsCutAndTheQueueIsDrained) {
    RepliesTo(Long(9000, {0x1B, 0x01}));
    ASSERT_THAT(os.Notifications(), SizeIs(1));
    EXPECT_EQ(0x004E0800u, os.Notifications()[0].wParam);
    EXPECT_EQ(0, ReceiveQueue->Count());
}

TEST_F(ResponseParserTest, NothingOfALongerReplyStaysInTheBuffers) {
    RepliesTo(Long(1024, {0x1B, 0x05}), 500);
    RepliesTo(Long(2048, {0x1B, 0x01}), 800);
    RepliesTo({0x1B, 0x05}, 500);
    RepliesTo({0x1B, 0x01}, 800);
    EXPECT_TRUE(
        std::all_of(&ResponseBuffer[2], std::end(ResponseBuffer), [](uint8_t byte) { return byte == 0; }));
    EXPECT_TRUE(
        std::all_of(&CardDataBuffer[2], std::end(CardDataBuffer), [](uint8_t byte) { return byte == 0; }));
}

TEST_F(ResponseParserTest, AFullRingIsOneReplyThatIsCut) {
    StatusPending = 1;
    while (ReceiveQueue->Put(0x16) != 0) {
    }
    Parse(500);
    ASSERT_THAT(os.Notifications(), SizeIs(1));
    EXPECT_EQ(0x00530400u, os.Notifications()[0].wParam);
    EXPECT_EQ(0, ReceiveQueue->Count());
}

TEST_F(ResponseParserTest, GoesOnWithoutARing) {
    delete ReceiveQueue;
    ReceiveQueue = nullptr;
    EXPECT_EQ(std::nullopt, Parse(1000));
    EXPECT_THAT(os.Notifications(), IsEmpty());
}

} // namespace
} // namespace nadrel
