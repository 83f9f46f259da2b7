#include "tools/CommandLine.h"

#include "tools/Address.h"
#include "tools/Catalogue.h"
#include "tools/Fault.h"
#include "tools/ListenCommand.h"
#include "tools/PictureCommand.h"
#include "tools/RunCommand.h"
#include "tools/StatusCommand.h"

#include <CLI/CLI.hpp>
#include <utf8.h>

#include <iostream>
#include <limits>

namespace tool {
namespace {

constexpr char kRunFooter[] = R"(
A job is a UTF-8 text file. Each line is one call of the library, or a comment:

  # a headline
  SetTextAlignment(1)
  SetTextStyle(0, 1, 1, 1, 0)
  TextSaveSpool("Café crème  3,20 €")
  PrintData()

"nadrel functions" lists the calls. The names of pictures, as in NormalBmpSaveSpool("logo.bmp"), are those of bitmap
files beside the job file. The whole job, pictures and all, is checked before anything is sent. Unless it ends with a
PrintSpool of its own, it is printed at its end.

Exit status: 0 done, 1 the job or the printer failed, 2 the job file or the command line is wrong.)";

constexpr char kPictureFooter[] = R"(
The picture is laid on white, turned as the camera says, and printed in black and white dots: as wide as it is, but
not wider than 576 dots, the widest usual paper; or, larger or smaller, with --width (1 to 2016).

A picture that is longer than the spool (some 5600 lines of 576 dots) is sent in pieces that join on the paper. Its
grey dots are laid anew at the seams, which are put behind lines of only black and white where there are any: there
they do not show. Such a picture is never compressed.

Exit status: 0 done, 1 the printer failed, 2 the picture or the command line is wrong.)";

constexpr char kStatusFooter[] =
    "\nExit status: 0 it answered, 1 it did not or there is no link, 2 the command line is wrong.";

constexpr char kListenFooter[] = "\nEach line: time, kind, length, text, bytes. Ends with Ctrl-C.";

constexpr int32_t kLongestTimeoutMs = 3'600'000;

std::string CheckUtf8(const std::string &value) {
    return utf8::is_valid(value.begin(), value.end()) ? "" : "is not UTF-8";
}

std::string CheckAddress(const std::string &value) {
    return ParseAddress(value) ? CheckUtf8(value)
                               : value + " is no address, expected HOST, HOST:PORT or [IPV6]:PORT";
}

CLI::Validator Between(int64_t lowest, int64_t highest) {
    return CLI::Range(lowest, highest).description("");
}

void AddLinkOptions(CLI::App &command, LinkOptions &link) {
    CLI::Option *serial = command.add_option("--serial", link.serial, "Serial port, such as /dev/ttyUSB0");
    serial->type_name("PATH")->check(CheckUtf8);
    command.add_option("--tcp", link.tcp, "Network address; the port is 9100 if not given")
        ->type_name("HOST[:PORT]")
        ->check(CheckAddress)
        ->excludes(serial);
    command.add_option("--baud", link.baudRate, "Speed of the serial port, 115200 if not given")
        ->type_name("N")
        ->check(Between(1, std::numeric_limits<uint32_t>::max()))
        ->needs(serial);
    command.add_flag("--framed", link.framed, "Use the framed form; the printer must answer when connecting");
}

void RequireLink(const LinkOptions &link) {
    if (link.Name().empty())
        throw CLI::RequiredError("--serial or --tcp");
}

void AddDestination(CLI::App &command, Destination &destination) {
    AddLinkOptions(command, destination.link);
    command
        .add_option("--hex", destination.hex,
                    "Send nothing: write what would be sent to a file, or to - (here)")
        ->type_name("FILE");
}

void RequireDestination(const Destination &destination) {
    if (destination.hex.empty())
        RequireLink(destination.link);
}

void AddRun(CLI::App &app, RunOptions &options, ExitStatus &status) {
    CLI::App *command = app.add_subcommand("run", "Run a job file on a printer");
    command->add_option("JOB", options.job, "The job file, or - (the standard input)")
        ->required()
        ->type_name("");
    AddDestination(*command, options.destination);
    command->footer(kRunFooter);
    command->callback([&] {
        RequireDestination(options.destination);
        status = RunCommand(options);
    });
}

void AddPicture(CLI::App &app, PictureOptions &options, ExitStatus &status) {
    CLI::App *command = app.add_subcommand("picture", "Print a PNG, JPEG or BMP file");
    command->add_option("FILE", options.file, "The picture")->required()->type_name("");
    AddDestination(*command, options.destination);
    command->add_flag("--compressed", options.compressed, "Send fewer bytes");
    command->add_option("--width", options.width, "Make it so many dots wide")
        ->type_name("DOTS")
        ->check(Between(1, kWidestPicture));
    command->footer(kPictureFooter);
    command->callback([&] {
        RequireDestination(options.destination);
        status = PictureCommand(options);
    });
}

void AddStatus(CLI::App &app, StatusOptions &options, ExitStatus &status) {
    CLI::App *command = app.add_subcommand("status", "Ask a printer for its status, model and firmware");
    AddLinkOptions(*command, options.link);
    command->add_option("--timeout", options.timeoutMs, "How long to wait for an answer, 1000 if not given")
        ->type_name("MS")
        ->check(Between(0, kLongestTimeoutMs));
    command->footer(kStatusFooter);
    command->callback([&] {
        RequireLink(options.link);
        status = StatusCommand(options);
    });
}

void AddListen(CLI::App &app, ListenOptions &options, ExitStatus &status) {
    CLI::App *command = app.add_subcommand("listen", "Print what a printer says, until interrupted");
    AddLinkOptions(*command, options.link);
    command->add_option("--msr", options.msrTrack, "Read magnetic stripes meanwhile, mode 0 to 4")
        ->type_name("MODE")
        ->check(Between(0, 4));
    command->footer(kListenFooter);
    command->callback([&] {
        RequireLink(options.link);
        status = ListenCommand(options);
    });
}

void AddFunctions(CLI::App &app) {
    app.add_subcommand("functions", "List what a job can call")->callback([] {
        ListFunctions(LibraryCatalogue(), std::cout);
    });
}

ExitStatus Complain(const std::exception &fault, ExitStatus status) {
    std::cerr << fault.what() << '\n';
    return status;
}

ExitStatus Run(CLI::App &app, int count, char **arguments, const ExitStatus &status) {
    try {
        app.parse(count, arguments);
        return status;
    } catch (const CLI::ParseError &request) {
        return app.exit(request) == 0 ? ExitStatus::fine : ExitStatus::misused;
    } catch (const Fault &fault) {
        return Complain(fault, ExitStatus::misused);
    } catch (const std::exception &fault) {
        return Complain(fault, ExitStatus::failed);
    }
}

} // namespace

ExitStatus Main(int count, char **arguments) {
    CLI::App app("Prints on portable thermal receipt printers.", "nadrel");
    ExitStatus status = ExitStatus::fine;
    RunOptions run;
    PictureOptions picture;
    StatusOptions ask;
    ListenOptions listen;
    app.set_version_flag("--version", "nadrel " NADREL_VERSION);
    app.require_subcommand(1);
    AddRun(app, run, status);
    AddPicture(app, picture, status);
    AddStatus(app, ask, status);
    AddListen(app, listen, status);
    AddFunctions(app);
    return Run(app, count, arguments, status);
}

} // namespace tool
