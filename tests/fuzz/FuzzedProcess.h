#ifndef FUZZEDPROCESS_H
#define FUZZEDPROCESS_H

/// Makes what the library needs in a process that fuzzes it, when called first: an application, and
/// loggers that print nothing.
void prepareFuzzedProcess();

#endif
