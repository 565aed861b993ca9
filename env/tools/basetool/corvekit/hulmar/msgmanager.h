#ifndef HULMAR_MSGMANAGER_H
#define HULMAR_MSGMANAGER_H

#include "hulmar_export.h"

// Posts numbered messages of the suite's message table to the running tool's message channel.
// A console tool shows each one on standard error as "<number>: <text>".
class HULMAR_EXPORT msgManager
{
public:
    msgManager();
    ~msgManager() = default;
    msgManager(const msgManager &) = delete;
    msgManager &operator=(const msgManager &) = delete;

    // Posts message `msgNumber` (a decimal text) with the arguments its table entry expects.
    // Returns 0 once the message is delivered, -1 for a null or unknown number; an unknown
    // number is still shown, with its arguments left out, so that nothing passes silently.
    int postMsg(const char *msgNumber, ...);
};

#endif
