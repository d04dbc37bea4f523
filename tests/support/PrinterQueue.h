#pragma once

#include <QByteArray>
#include <QList>

/// The machine's printer: a test that links this finds one paper printer of 300 dots an inch, which
/// holds A3, A4 and A5 and keeps its jobs here as PDF files. It stands in the place of the functions
/// by which Qt reaches the printing service, so the executable must export its symbols.
namespace PrinterQueue {

/// What was printed since the last call, oldest first.
QList<QByteArray> takeJobs();

/// How many jobs wait to be taken.
int jobCount();

/// Whether the machine has its printer, as at first.
void setPresent(bool present);

} // namespace PrinterQueue
