/* results.h: result codes and their texts.
 *
 * Every exported function returns a result: uint64_t, of which the low 32 bits are the code. 0 is success.
 *
 *   0x84000000 + id           a code of the library; its text is the message with that id
 *   0x88010001                invalid argument (no text)
 *   0x88010002                out of memory for a string (no text)
 *   0x88010102                a read gave fewer bytes than asked for (no text)
 *   0xFFFFFFFFFFFFFFFD        a movie's sources held nothing to scan (the one result that fills all 64 bits)
 *   anything else             an error number of the platform, passed through: GetLastError's on Windows, errno's
 *                             elsewhere
 */
#ifndef ORVEN_RESULTS_H
#define ORVEN_RESULTS_H

#include <orven/types.h>

ORV_BEGIN_DECLS

/** Writes the text of a result code.
 *  @param code          a result; only its low 32 bits count
 *  @param buffer        receives the text with its terminator; empty if the code has no text. May be null
 *  @param bufferLength  room of buffer in bytes, terminator included; 0 writes nothing. A text of the library is cut
 *                       to the room, a text of the platform that does not fit leaves the buffer empty
 *  @return 0 */
ORV_API uint64_t ErrorToString(uint64_t code, char* buffer, uint64_t bufferLength);

/** The wide form of ErrorToString; bufferLength counts characters. */
ORV_API uint64_t ErrorToStringW(uint64_t code, OrvWChar* buffer, uint64_t bufferLength);

/** Always returns 0. It is there so that a host can see whether the library is loaded. */
ORV_API uint64_t GetServiceInfo(void);

ORV_END_DECLS

#endif
