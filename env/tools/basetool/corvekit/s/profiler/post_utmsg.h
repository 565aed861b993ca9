#ifndef CORVEKIT_POST_UTMSG_H
#define CORVEKIT_POST_UTMSG_H

namespace tivoran::corvekit {

/*!
 * The profiler's output channel. Posts \a text whole, possibly of several lines, as numbered
 * message "1009993" of the message manager, and then, where Qt's logging rules leave it on, as
 * one debug record of the category "gui.profiler.log" carrying this file, line and function.
 * The manager and the category are built by the first call. A null \a text posts an empty one.
 */
void post_utmsg(const char *text);

} // namespace tivoran::corvekit

#endif
