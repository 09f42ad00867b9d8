#pragma once

#include <QString>

#include <functional>

/// Writes one line to the log: standard error, with the time in front. Any thread. Lines never hold passwords
/// or Authorization headers; callers see to that.
void KRLog(const QString& line);

/// Where log lines go instead of standard error. Returns the sink that was set before; an empty function
/// restores standard error. The sink runs on the logging thread, under the log's lock.
using KRLogSink = std::function<void(const QString& line)>;
KRLogSink KRSetLogSink(KRLogSink sink);
