#pragma once

// The system's ioctl. An emulator of processes may lack the two requests that set a line to any rate: then the older
// ones, with the rates kept here.
int SystemIoctl(int descriptor, unsigned long request, void *argument);
