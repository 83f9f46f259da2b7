#include "tools/Catalogue.h"
#include "tools/SpoolLength.h"

#include "api/NadrelHost.h"
#include "api/NadrelPrinter.h"

#include <initializer_list>

namespace tool {
namespace {

constexpr std::string_view kNoLink = "no link is open";
constexpr std::string_view kSpoolIsFull = "the spool has no room for it";
constexpr std::string_view kNoRoomForPicture = "the spool has no room for the picture";

constexpr ResultCode kThroughLinkCodes[] = {{ERR_NOT_CONNECTED, kNoLink}, {ERR_SPOOL_LIMIT, kSpoolIsFull}};
constexpr ResultCode kPictureCodes[] = {{-1, "the file cannot be loaded: it must be a bitmap file (BMP)"},
                                        {ERR_NOT_CONNECTED, kNoLink},
                                        {ERR_SPOOL_LIMIT, kNoRoomForPicture}};
constexpr ResultCode kTextRunCodes[] = {
    {ERR_NOT_CONNECTED, kNoLink},
    {ERR_SPOOL_LIMIT, "the spool has no room for the text, which would take it past 9999 bytes"}};
constexpr ResultCode kPrintingCodes[] = {
    {0, "the spool's length is below zero and nothing was sent"},
    {ERR_NOT_CONNECTED, kNoLink},
    {ERR_FRAME_LIMIT, "the framed form of the spool is longer than 409600 bytes"}};
constexpr ResultCode kCodePageCodes[] = {{0, "it is no code page that the library knows"}};
constexpr ResultCode kSendTimeoutCodes[] = {{0, "the time is below zero"}};
constexpr ResultCode kStatusQueryCodes[] = {{-1, kNoLink}, {-7, "the printer did not answer in time"}};
constexpr ResultCode kRequestCodes[] = {
    {ERR_NOT_CONNECTED, kNoLink}, {ERR_SPOOL_LIMIT, "the spool is past 409600 bytes and nothing was sent"}};
constexpr ResultCode kPaymentCodes[] = {{-1, "the first field is longer than 12 digits and nothing was sent"},
                                        {-4, "the third field has not 6 digits and nothing was sent"}};

constexpr ResultRule kNoResult{};
constexpr ResultRule kThroughLink{.failures = kThroughLinkCodes};
constexpr ResultRule kPicture{.failures = kPictureCodes};
constexpr ResultRule kSilentPicture{.mustAppend = MustAppend{&SpoolLength, kNoRoomForPicture}};
constexpr ResultRule kTextRun{.failures = kTextRunCodes};
constexpr ResultRule kPrinting{.failures = kPrintingCodes, .onlyOneIsFine = true};
constexpr ResultRule kCodePage{.failures = kCodePageCodes, .onlyOneIsFine = true};
constexpr ResultRule kSendTimeout{.failures = kSendTimeoutCodes, .onlyOneIsFine = true};
constexpr ResultRule kStatusQuery{.failures = kStatusQueryCodes};
constexpr ResultRule kRequest{.failures = kRequestCodes};
constexpr ResultRule kIdentifier{
    .onlyOneIsFine = true,
    .otherFailures = "the identifier has that many characters, it must have 8, and nothing was sent"};
constexpr ResultRule kPayment{
    .failures = kPaymentCodes,
    .onlyOneIsFine = true,
    .otherFailures = "the second field has that many digits, it must have 8, and nothing was sent"};

using Groups = std::vector<Group>;

Groups Spool() {
    return {{"Spool", Effect::appends, kThroughLink, {{"ControlCommand", &ControlCommand, "bytes", "count"}}},
            {"Spool", Effect::appends, kTextRun, {{"SaveSpool", &SaveSpool, "text", "font", "bold"}}},
            {"Spool", Effect::neither, kNoResult, {{"ClearSpool", &ClearSpool}}},
            {"Spool", Effect::prints, kPrinting, {{"PrintSpool", &PrintSpool, "clear"}}}};
}

Groups Host() {
    return {
        {"Host", Effect::neither, kCodePage, {{"SetAnsiCodePage", &SetAnsiCodePage, "codePage"}}},
        {"Host", Effect::neither, kSendTimeout, {{"SetSendTimeout", &SetSendTimeout, "milliseconds"}}},
    };
}

Groups TextCommands() {
    return {{"Text",
             Effect::appends,
             kThroughLink,
             {{"TextSaveSpool", &TextSaveSpool, "text"},
              {"PrintData", &PrintData},
              {"PrintDotFeed", &PrintDotFeed, "n"},
              {"PrintLineFeed", &PrintLineFeed, "n"},
              {"InitPrinterStatus", &InitPrinterStatus},
              {"SetLineSpace", &SetLineSpace, "n"},
              {"SetCharSpace", &SetCharSpace, "n"},
              {"SetCharCodeTable", &SetCharCodeTable, "table", "kind"},
              {"SetCharCodeTableEX", &SetCharCodeTableEX, "table"},
              {"SetFontSize", &SetFontSize, "n"},
              {"SetTextStyle", &SetTextStyle, "underline", "bold", "width", "height", "reverse"},
              {"SetUpsideDown", &SetUpsideDown, "on"},
              {"SetTextAlignment", &SetTextAlignment, "n"},
              {"SetPrintPosition", &SetPrintPosition, "x", "y"},
              {"SetAbsPosition", &SetAbsPosition, "pos"},
              {"CutPaper", &CutPaper, "mode"},
              {"FeedToMark", &FeedToMark},
              {"SetPositionFromMark", &SetPositionFromMark, "dots"},
              {"SetMarkUseMode", &SetMarkUseMode, "on"}}}};
}

Groups PageMode() {
    return {{"Page mode",
             Effect::appends,
             kNoResult,
             {{"InitPageMode", &InitPageMode, "x", "y", "width", "height"},
              {"SetPageMode", &SetPageMode},
              {"Page_SetStandardMode", &Page_SetStandardMode},
              {"Page_ClearCurrentData", &Page_ClearCurrentData},
              {"Page_Print", &Page_Print},
              {"Page_Print_StandardMode", &Page_Print_StandardMode},
              {"Page_SetArea", &Page_SetArea, "x", "y", "width", "height"},
              {"Page_SetDirection", &Page_SetDirection, "n"},
              {"Page_SetPosition", &Page_SetPosition, "x", "y"},
              {"Page_Newline", &Page_Newline},
              {"Page_DotFeed", &Page_DotFeed, "n"},
              {"Page_LineFeed", &Page_LineFeed, "n"},
              {"Page_DrawBox", &Page_DrawBox, "x", "y", "width", "height", "thickness"},
              {"Page_DrawLine", &Page_DrawLine, "x1", "y1", "x2", "y2", "thickness"},
              {"Page_DrawEllipse", &Page_DrawEllipse, "x1", "y1", "x2", "y2", "thickness"}}}};
}

Groups Barcodes() {
    return {{"Barcodes",
             Effect::appends,
             kThroughLink,
             {{"OneDimensionBarcodeSaveSpool", &OneDimensionBarcodeSaveSpool, "symbology", "width", "height",
               "hri", "data"},
              {"BarcodeSaveSpool", &BarcodeSaveSpool, "symbology", "width", "height", "hri", "data",
               "areaWidth", "areaHeight", "x"},
              {"PDF417SaveSpool", &PDF417SaveSpool, "moduleWidth", "p1", "p2", "p3", "data", "hri"},
              {"TruncatedPDF417SaveSpool", &TruncatedPDF417SaveSpool, "moduleWidth", "p1", "p2", "p3", "data",
               "hri"},
              {"MicroPDF417SaveSpool", &MicroPDF417SaveSpool, "moduleWidth", "p1", "p2", "p3", "data", "hri"},
              {"QRCodeSaveSpool", &QRCodeSaveSpool, "version", "eccLevel", "moduleSize", "data"},
              {"DataMatrixSaveSpool", &DataMatrixSaveSpool, "p1", "p2", "moduleSize", "data"},
              {"MaxicodeSaveSpool", &MaxicodeSaveSpool, "mode", "data"},
              {"GS1DatabarSaveSpool", &GS1DatabarSaveSpool, "type", "segments", "data"}}}};
}

Groups MacrosAndTrueType() {
    return {{"Macros",
             Effect::appends,
             kNoResult,
             {{"SetMarco_Start", &SetMarco_Start},
              {"SetMacro_End", &SetMacro_End},
              {"SetMacro_FontSize_FontTable", &SetMacro_FontSize_FontTable, "size", "table"},
              {"Initialize_Macro", &Initialize_Macro}}},
            {"TrueType",
             Effect::appends,
             kThroughLink,
             {{"SelectForTTF", &SelectForTTF, "name"},
              {"SetFontForTTF", &SetFontForTTF, "name"},
              {"PrintSpoolForTTF", &PrintSpoolForTTF, "text", "p1", "p2"}}}};
}

Groups Raster() {
    return {{"Raster",
             Effect::appends,
             kPicture,
             {{"BmpSaveSpool", &BmpSaveSpool, PictureName{"path"}, "x", "y"}}},
            {"Raster",
             Effect::appends,
             kSilentPicture,
             {{"NormalBmpSaveSpool", &NormalBmpSaveSpool, PictureName{"path"}},
              {"CompressedBmpSaveSpool", &CompressedBmpSaveSpool, PictureName{"path"}}}},
            {"Raster", Effect::appends, kNoResult, {{"LoadLogoSaveSpool", &LoadLogoSaveSpool, "n"}}}};
}

Groups Status() {
    return {{"Status",
             Effect::neither,
             kStatusQuery,
             {{"GetPrinterStatus", &GetPrinterStatus, "timeout"},
              {"GetPrinterStatusEX", &GetPrinterStatusEX, "timeout"}}},
            {"Status",
             Effect::neither,
             kRequest,
             {{"GetPrinterModelName", &GetPrinterModelName},
              {"GetFirmwareVersion", &GetFirmwareVersion},
              {"Set_PrintOutStatus", &Set_PrintOutStatus, "mode"}}}};
}

Groups CardReaders() {
    return {{"Card readers",
             Effect::neither,
             kRequest,
             {{"EnterMSRMode", &EnterMSRMode, "track"},
              {"CancelMSRMode", &CancelMSRMode},
              {"CardRead", &CardRead, "flag"},
              {"CardRead_M", &CardRead_M, "flag"},
              {"CardCancel", &CardCancel},
              {"SecuredCardCancel", &SecuredCardCancel}}},
            {"Card readers",
             Effect::appends,
             kThroughLink,
             {{"EnterSCRMode", &EnterSCRMode},
              {"CancelSCRMode", &CancelSCRMode},
              {"SecuredCardCommend", &SecuredCardCommend, "text"}}}};
}

Groups Payment() {
    return {{"Payment", Effect::neither, kIdentifier, {{"SetTermialID", &SetTermialID, "id"}}},
            {"Payment",
             Effect::neither,
             kPayment,
             {{"SetPaymentReq", &SetPaymentReq, "type", "first", "second", "third"}}}};
}

std::vector<NotForJobs> OnlyForPrograms() {
    constexpr std::string_view kLink = "the link is chosen with an option of the tool";
    constexpr std::string_view kClose = "the tool closes the link after the job";
    constexpr std::string_view kProgram = "it serves programs only";
    return {{"InitPrinter", kLink},
            {"ConnectSerialPrinter", kLink},
            {"ConnectSerialPrinterEx", kLink},
            {"InitWlanPrinter", kLink},
            {"ConnectWirelessPrinter", kLink},
            {"ClosePrinter", kClose},
            {"ClosePrinterConnection", kClose},
            {"GetPortHandle", kProgram},
            {"U2A", kProgram},
            {"SetNotificationHandler", kProgram},
            {"GetLinkReport", kProgram}};
}

Catalogue MakeCatalogue() {
    Catalogue catalogue{.groups = {}, .notForJobs = OnlyForPrograms()};
    for (const auto family : {&Spool, &TextCommands, &PageMode, &Barcodes, &MacrosAndTrueType, &Raster,
                              &Status, &CardReaders, &Payment, &Host})
        for (Group &group : family())
            catalogue.groups.push_back(std::move(group));
    return catalogue;
}

} // namespace

const Catalogue &LibraryCatalogue() {
    static const Catalogue catalogue = MakeCatalogue();
    return catalogue;
}

} // namespace tool
