#include "printer/Options.h"

#include "printer/FirmwareTables.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace printer {
namespace {

// Options that CLI11 reads as numbers, until they are put where they belong.
struct Numbers {
    int64_t tcpPort = -1, exitWhenIdle = -1, swipeAfter = -1, replyDelay = 0, paperOut = -1;
    std::string listing;
};

constexpr char Description[] = "A printer made of software: stands where a receipt printer would, on a "
                               "serial port or on a TCP port, and draws\n"
                               "what it prints as a PNG.\n\n"
                               "Lines on the standard input: \"swipe\" swipes a card through a reader that "
                               "waits for one, \"paper-out\" and\n"
                               "\"paper-in\" take the roll out and put a new one in, \"send 30 31\" sends "
                               "bytes to the hosts, \"quit\" ends.";

std::string CheckReplyText(const std::string &text) {
    const bool fits =
        !text.empty() && text.size() <= 1000 &&
        std::all_of(text.begin(), text.end(), [](char letter) { return letter > ' ' - 1 && letter < 0x7F; });
    return fits ? "" : "1 to 1000 printable ASCII characters are expected";
}

void AddLinkOptions(CLI::App &app, Options &options, Numbers &numbers) {
    auto *serial = app.add_flag("--serial", options.serial, "Make a pseudo-terminal and print its name");
    app.add_option("--link", options.link, "A symbolic link to the pseudo-terminal")->needs(serial);
    auto *tcp =
        app.add_option("--tcp", numbers.tcpPort, "Listen on this TCP port; 0 for any, which is printed");
    tcp->check(CLI::Range(0, 65535))->type_name("PORT");
    app.add_option("--bind", options.bindAddress, "Listen on this address instead of the loopback ones")
        ->needs(tcp);
    app.add_option("--input", options.input, "Read a file of captured bytes instead")
        ->excludes(serial)
        ->excludes(tcp);
    app.add_option("--exit-when-idle", numbers.exitWhenIdle,
                   "End when bytes have come and then none for this long")
        ->check(CLI::Range(0, 86400000))
        ->type_name("MS");
}

void AddPaperOptions(CLI::App &app, Options &options, Numbers &numbers) {
    app.add_option("--paper", options.paperWidth, "Width of the paper in dots, 384 or 576")
        ->check(CLI::IsMember({384, 576}))
        ->type_name("DOTS");
    app.add_option("--output", options.output, "The picture of the paper, a PNG")->type_name("FILE");
    app.add_option("--margin", options.margin, "White margin around the picture")
        ->check(CLI::Range(0, 200))
        ->type_name("DOTS");
    app.add_option("--listing", numbers.listing,
                   "List the decoded commands, to a file or the standard output")
        ->expected(0, 1)
        ->type_name("[FILE]");
    app.add_option("--font", options.font, "The printer's font, a file")->type_name("FILE");
}

void AddReplyOptions(CLI::App &app, Options &options, Numbers &numbers) {
    const CLI::Validator isReplyText(CheckReplyText, "", "reply text");
    app.add_option("--model", options.identity.model, "The model name it answers")->check(isReplyText);
    app.add_option("--firmware", options.identity.firmware, "The firmware version it answers")
        ->check(isReplyText);
    app.add_option("--swipe-after", numbers.swipeAfter, "Swipe a card this long after a reader was entered")
        ->check(CLI::Range(0, 86400000))
        ->type_name("MS");
}

void AddFaultOptions(CLI::App &app, Options &options, Numbers &numbers) {
    constexpr char Group[] = "Faults";
    Faults &faults = options.faults;
    const auto most = std::numeric_limits<int>::max();
    app.add_flag("--silent", faults.silent, "Answer nothing")->group(Group);
    app.add_option("--reply-delay", numbers.replyDelay, "Wait so long before each answer")
        ->check(CLI::Range(0, 86400000))
        ->type_name("MS")
        ->group(Group);
    app.add_flag("--split-replies", faults.splitReplies, "Answer one byte at a time, 20 ms apart")
        ->group(Group);
    app.add_option("--hang-up-after", faults.hangUpAfter, "Hang up on a host that has sent so many bytes")
        ->check(CLI::Range(1, most))
        ->type_name("BYTES")
        ->group(Group);
    app.add_option("--read-rate", faults.readRate, "Read no more than so many bytes a second")
        ->check(CLI::Range(1, most))
        ->type_name("BYTES_PER_S")
        ->group(Group);
    app.add_option(
           "--paper-out", numbers.paperOut,
           "The roll ends after so many dot rows (0 when not given): the status says so, and what has to be "
           "printed waits, while nothing more is read")
        ->expected(0, 1)
        ->default_str("0")
        ->check(CLI::Range(0, most))
        ->type_name("[ROWS]")
        ->group(Group);
    app.add_option("--flip-frames", faults.flipFrames, "Take every so many-th framed command for a bad one")
        ->check(CLI::Range(1, most))
        ->type_name("N")
        ->group(Group);
    app.add_flag("--flood", faults.flood, "Send without end")->group(Group);
}

std::optional<std::chrono::milliseconds> MillisecondsOf(int64_t number) {
    return number < 0 ? std::nullopt : std::optional(std::chrono::milliseconds(number));
}

void Convert(const CLI::App &app, const Numbers &numbers, Options &options) {
    if (numbers.tcpPort >= 0)
        options.tcpPort = static_cast<uint16_t>(numbers.tcpPort);
    if (app.count("--listing") > 0)
        options.listing = numbers.listing;
    if (app.count("--paper-out") > 0)
        options.faults.paperOut = static_cast<int>(std::max<int64_t>(numbers.paperOut, 0));
    options.faults.replyDelay = std::chrono::milliseconds(numbers.replyDelay);
    options.exitWhenIdle = MillisecondsOf(numbers.exitWhenIdle);
    options.swipeAfter = MillisecondsOf(numbers.swipeAfter);
}

} // namespace

std::optional<int> ReadOptions(int argc, const char *const *argv, Options &options) {
    CLI::App app(Description, "nadrel-printer");
    Numbers numbers;
    AddLinkOptions(app, options, numbers);
    AddPaperOptions(app, options, numbers);
    AddReplyOptions(app, options, numbers);
    AddFaultOptions(app, options, numbers);
    try {
        app.parse(argc, argv);
        Convert(app, numbers, options);
        if (!options.serial && !options.tcpPort && options.input.empty())
            throw CLI::RequiredError("One of --serial, --tcp and --input");
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    return std::nullopt;
}

} // namespace printer
