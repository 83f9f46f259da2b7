#include "printer/Server.h"

#include "printer/PngFile.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <poll.h>
#include <sstream>

namespace printer {
namespace {

constexpr milliseconds QuietTime{100}; // without a byte, before the picture is written
constexpr milliseconds LongestWait{60000};
constexpr int LastReadWait = 30;   // milliseconds; bytes may still be on their way through the system
constexpr int MostLastReads = 256; // a host may never stop sending

short EventsFor(const std::vector<pollfd> &list, int descriptor) {
    const auto found = std::find_if(list.begin(), list.end(),
                                    [descriptor](const pollfd &entry) { return entry.fd == descriptor; });
    return found == list.end() ? short{0} : found->revents;
}

} // namespace

struct Server::SerialLink {
    PseudoTerminal terminal;
    std::unique_ptr<SymbolicLink> link;
    std::unique_ptr<Channel> channel;
};

struct Server::TcpLink {
    Descriptor connection;
    Channel channel;
};

Server::Server(const Options &options, Printer &printer, std::ostream &announcements)
    : options_(options), printer_(printer), announcements_(announcements) {
    if (options.faults.paperOut)
        printer.EndPaperAfter(*options.faults.paperOut);
    if (options.serial)
        OpenSerial();
    if (options.tcpPort) {
        listener_ = std::make_unique<TcpListener>(options.bindAddress, *options.tcpPort,
                                                  options.faults.SlowsReading());
        announcements_ << "tcp " << listener_->Name() << std::endl;
    }
}

Server::~Server() = default;

Session Server::NewSession() const {
    return {printer_, options_.identity, options_.faults.flipFrames};
}

void Server::OpenSerial() {
    serial_.reset();
    serial_ = std::make_unique<SerialLink>();
    const std::string &name = serial_->terminal.PortName();
    if (!options_.link.empty())
        serial_->link = std::make_unique<SymbolicLink>(options_.link, name);
    serial_->channel = std::make_unique<Channel>(serial_->terminal.PrinterEnd(), NewSession(),
                                                 options_.faults, options_.swipeAfter);
    announcements_ << "serial " << name << std::endl;
}

void Server::Accept(const Descriptor &listener) {
    Descriptor connection = TcpListener::Accept(listener);
    if (!connection.IsOpen())
        return;
    const int number = connection.Get();
    tcp_.reset(new TcpLink{std::move(connection),
                           Channel(number, NewSession(), options_.faults, options_.swipeAfter)});
}

std::vector<Channel *> Server::Channels() {
    std::vector<Channel *> channels;
    if (serial_)
        channels.push_back(serial_->channel.get());
    if (tcp_)
        channels.push_back(&tcp_->channel);
    return channels;
}

int Server::Run(int signals, Console console) {
    while (!leaving_) {
        const Time now = std::chrono::steady_clock::now();
        std::vector<pollfd> list = WaitList(signals, console, now);
        Wait(list, now);
        leaving_ |= EventsFor(list, signals) != 0;
        if (console.DescriptorToWaitFor() >= 0 && EventsFor(list, console.DescriptorToWaitFor()) != 0)
            console.Read();
        while (const auto line = console.NextLine())
            ExecuteLine(*line);
        Dispatch(list);
        printer_.FlushListing();
    }
    ReadWhatIsThere();
    FinishSessions();
    SavePicture();
    return status_;
}

std::vector<pollfd> Server::WaitList(int signals, const Console &console, Time now) {
    std::vector<pollfd> list = LinkList(now);
    list.push_back({signals, POLLIN, 0});
    if (console.DescriptorToWaitFor() >= 0)
        list.push_back({console.DescriptorToWaitFor(), POLLIN, 0});
    if (!tcp_ && listener_)
        for (const Descriptor &socket : listener_->Sockets())
            list.push_back({socket.Get(), POLLIN, 0});
    return list;
}

std::vector<pollfd> Server::LinkList(Time now) {
    std::vector<pollfd> list;
    if (serial_)
        list.push_back({serial_->terminal.PrinterEnd(), serial_->channel->EventsToWaitFor(now), 0});
    if (tcp_)
        list.push_back({tcp_->connection.Get(), tcp_->channel.EventsToWaitFor(now), 0});
    return list;
}

void Server::Wait(std::vector<pollfd> &list, Time now) {
    const Time until = std::min(NextTime(now).value_or(now + LongestWait), now + LongestWait);
    const auto wait = std::chrono::ceil<milliseconds>(until - now);
    if (poll(list.data(), list.size(), static_cast<int>(std::max(wait, milliseconds(0)).count())) < 0)
        for (pollfd &entry : list)
            entry.revents = 0;
}

std::optional<Time> Server::NextTime(Time now) {
    std::optional<Time> next;
    const auto consider = [&next](std::optional<Time> time) {
        if (time)
            next = std::min(next.value_or(*time), *time);
    };
    NoteActivity(now);
    for (const Channel *channel : Channels())
        consider(channel->NextTime());
    if (lastActive_ && printer_.GetPaper().Changes() != savedChanges_)
        consider(*lastActive_ + QuietTime);
    if (lastActive_ && options_.exitWhenIdle)
        consider(std::max(*lastActive_ + *options_.exitWhenIdle, now + milliseconds(1)));
    return next;
}

void Server::Dispatch(const std::vector<pollfd> &list) {
    const Time now = std::chrono::steady_clock::now();
    HandleChannels(list, now);
    if (!tcp_ && listener_)
        for (const Descriptor &socket : listener_->Sockets())
            if (!tcp_ && EventsFor(list, socket.Get()) != 0)
                Accept(socket);
    NoteActivity(now);
    Rest(now);
    leaving_ |= IsTimeToLeave(now);
}

void Server::HandleChannels(const std::vector<pollfd> &list, Time now) {
    if (serial_ && !serial_->channel->Handle(EventsFor(list, serial_->terminal.PrinterEnd()), now)) {
        NoteActivity(now);
        serial_->channel->GetSession().Finish();
        OpenSerial();
    }
    if (tcp_ && !tcp_->channel.Handle(EventsFor(list, tcp_->connection.Get()), now)) {
        NoteActivity(now);
        tcp_->channel.GetSession().Finish();
        tcp_.reset();
    }
}

void Server::NoteActivity(Time now) {
    for (const Channel *channel : Channels())
        if (const auto active = channel->LastActive(now))
            lastActive_ = std::max(lastActive_.value_or(*active), *active);
}

// Does what waits until no more bytes come.
void Server::Rest(Time now) {
    if (!lastActive_ || now - *lastActive_ < QuietTime || printer_.GetPaper().Changes() == savedChanges_)
        return;
    SavePicture();
    for (Channel *channel : Channels()) {
        channel->GetSession().ReportPrintOut();
        channel->Handle(0, now);
    }
}

bool Server::IsTimeToLeave(Time now) {
    if (!options_.exitWhenIdle || !lastActive_ || now - *lastActive_ < *options_.exitWhenIdle)
        return false;
    const auto channels = Channels();
    return std::none_of(channels.begin(), channels.end(),
                        [now](const Channel *channel) { return channel->HoldsReplies(now); });
}

void Server::ExecuteLine(const std::string &line) {
    if (line == "swipe") {
        bool read = false;
        for (Channel *channel : Channels())
            read |= channel->GetSession().Swipe();
        if (!read)
            std::cerr << "nadrel-printer: No reader waits for a card.\n";
    } else if (line == "paper-out") {
        printer_.EndPaperAfter(0);
    } else if (line == "paper-in") {
        printer_.LoadPaper();
        for (Channel *channel : Channels())
            channel->GetSession().Continue();
    } else if (line.starts_with("send ")) {
        SendHex(line.substr(5));
    } else if (line == "quit") {
        leaving_ = true;
    } else if (!line.empty()) {
        std::cerr << "nadrel-printer: The line \"" << line
                  << "\" means nothing; swipe, paper-out, paper-in, send and quit do.\n";
    }
}

void Server::SendHex(const std::string &hex) {
    Bytes bytes;
    std::istringstream words(hex);
    for (std::string word; words >> word;) {
        char *end = nullptr;
        const long value = std::strtol(word.c_str(), &end, 16);
        if (*end != '\0' || value < 0 || value > 255) {
            std::cerr << "nadrel-printer: \"" << word
                      << "\" is not a byte; two hexadecimal digits are expected.\n";
            return;
        }
        bytes.push_back(static_cast<uint8_t>(value));
    }
    for (Channel *channel : Channels())
        channel->GetSession().Send(bytes);
}

void Server::SavePicture() {
    savedChanges_ = printer_.GetPaper().Changes();
    if (options_.output.empty())
        return;
    try {
        WritePng(options_.output, printer_.GetPaper().Picture(), options_.margin);
    } catch (const std::exception &error) {
        std::cerr << "nadrel-printer: " << error.what() << '\n';
        status_ = 1;
    }
}

// What hosts had sent when the end was ordered still counts.
void Server::ReadWhatIsThere() {
    bool found = true;
    for (int round = 0; round < MostLastReads && found; ++round) {
        const Time now = std::chrono::steady_clock::now();
        std::vector<pollfd> list = LinkList(now);
        found = poll(list.data(), list.size(), LastReadWait) > 0;
        if (found)
            HandleChannels(list, now);
    }
}

void Server::FinishSessions() {
    for (Channel *channel : Channels()) {
        channel->GetSession().Finish();
        if (channel->GetSession().IsWaitingForPaper())
            std::cerr << "nadrel-printer: The paper has run out. Not everything was printed.\n";
    }
    printer_.Finish();
}

} // namespace printer
