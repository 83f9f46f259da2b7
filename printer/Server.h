#pragma once

#include "printer/Channel.h"
#include "printer/Console.h"
#include "printer/Options.h"
#include "printer/PseudoTerminal.h"
#include "printer/TcpListener.h"

#include <memory>
#include <ostream>

struct pollfd;

namespace printer {

// Serves hosts on the links of the options until a signal, a console line or the idle time ends it.
class Server {
  public:
    // The printer and the stream outlive the server. The names of the links are announced on the stream.
    // Throws std::runtime_error when a link cannot be made.
    Server(const Options &options, Printer &printer, std::ostream &announcements);
    ~Server();

    // `signals` becomes readable when the program is to end. The exit status comes back: 1 when the picture
    // could not be written.
    int Run(int signals, Console console);

  private:
    struct SerialLink;
    struct TcpLink;

    Session NewSession() const;
    void OpenSerial();
    void Accept(const Descriptor &listener);
    std::vector<Channel *> Channels();

    std::vector<pollfd> WaitList(int signals, const Console &console, Time now);
    std::vector<pollfd> LinkList(Time now);
    void Wait(std::vector<pollfd> &list, Time now);
    void Dispatch(const std::vector<pollfd> &list);
    void HandleChannels(const std::vector<pollfd> &list, Time now);
    std::optional<Time> NextTime(Time now);
    void NoteActivity(Time now);
    void Rest(Time now);
    bool IsTimeToLeave(Time now);
    void ExecuteLine(const std::string &line);
    void SendHex(const std::string &hex);
    void SavePicture();
    void ReadWhatIsThere();
    void FinishSessions();

    const Options &options_;
    Printer &printer_;
    std::ostream &announcements_;
    std::unique_ptr<SerialLink> serial_;
    std::unique_ptr<TcpListener> listener_;
    std::unique_ptr<TcpLink> tcp_; // the host that is connected
    std::optional<Time> lastActive_;
    uint64_t savedChanges_ = 0;
    bool leaving_ = false;
    int status_ = 0;
};

} // namespace printer
