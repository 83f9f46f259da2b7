#include "platform/windows/LineSettings.h"

namespace platform {

LineSettings FromBlock(const DCB &block) {
    LineSettings settings;
    settings.length = block.DCBlength;
    settings.baudRate = block.BaudRate;
    settings.binary = block.fBinary != 0;
    settings.parityCheck = block.fParity != 0;
    settings.ctsFlow = block.fOutxCtsFlow != 0;
    settings.dsrFlow = block.fOutxDsrFlow != 0;
    settings.dtrControl = block.fDtrControl;
    settings.dsrSensitivity = block.fDsrSensitivity != 0;
    settings.xonXoffOut = block.fOutX != 0;
    settings.xonXoffIn = block.fInX != 0;
    settings.errorCharacter = block.fErrorChar != 0;
    settings.dropNull = block.fNull != 0;
    settings.rtsControl = block.fRtsControl;
    settings.abortOnError = block.fAbortOnError != 0;
    settings.byteSize = block.ByteSize;
    settings.parity = block.Parity;
    settings.stopBits = block.StopBits;
    return settings;
}

void ToBlock(const LineSettings &settings, DCB &block) {
    block.DCBlength = settings.length;
    block.BaudRate = settings.baudRate;
    block.fBinary = settings.binary;
    block.fParity = settings.parityCheck;
    block.fOutxCtsFlow = settings.ctsFlow;
    block.fOutxDsrFlow = settings.dsrFlow;
    block.fDtrControl = settings.dtrControl & 3;
    block.fDsrSensitivity = settings.dsrSensitivity;
    block.fOutX = settings.xonXoffOut;
    block.fInX = settings.xonXoffIn;
    block.fErrorChar = settings.errorCharacter;
    block.fNull = settings.dropNull;
    block.fRtsControl = settings.rtsControl & 3;
    block.fAbortOnError = settings.abortOnError;
    block.ByteSize = settings.byteSize;
    block.Parity = settings.parity;
    block.StopBits = settings.stopBits;
}

} // namespace platform
