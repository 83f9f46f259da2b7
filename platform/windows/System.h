#pragma once

// The system's headers, in the order in which they can be read.

#include <winsock2.h>

#include <ws2tcpip.h>

#include <windows.h>
