#pragma once

#include <cstdint>

// What the serial and the wireless connection have in common: the receive side, the probe, failing.
namespace nadrel {

// Creates the conversion buffer, zeroed, and with it the possibility to take text.
void CreateConversionBuffer();

// Creates the ring, registers NADREL_PRT_OK and starts the receive and the parser thread. The link's open
// flag and handle are in place before.
void StartReceiveSide();

// Framed links: asks with the query frame until the parser has seen a framed status, four times at most.
// Gives 1, or ERR_NO_ANSWER with the link closed again. Plain links: 1.
int32_t ProbePrinter();

// Keeps the system's reason in LastLinkError, closes what ClosePrinter closes, and gives the result back.
int32_t FailConnect(int32_t result);

// Gives back the socket of a wireless connect, with its handle if that is still open.
void DisposeOfSocket();

} // namespace nadrel
