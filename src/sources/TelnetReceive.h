#pragma once

#include <QString>

namespace zkr {

struct ProgramState;
class ReceiveHost;

// Handles one received chunk (or one replayed file line) in Telnet_Text:
// answers the login, removes bell pairs, hands every spot line whose
// frequency lies above Telnet_MinFrequency to the evaluation, and recognises
// the cluster prompt. Nothing is carried over between calls, so a line cut
// in two chunks is evaluated in its cut form and its tail is dropped.
void Telnet_Receive(ProgramState &state, ReceiveHost &host);

// True when the text ends in ">" CR LF, tested the way the program always
// did: the decimal codes of the last three characters written one after the
// other must read "621310". Texts shorter than three characters are no
// prompt.
bool Is_ClusterPrompt(const QString &text);

// Removes pairs of BEL characters, the first pair each time, until none is
// left: three bells become one, four become none.
QString Remove_BellPairs(QString text);

} // namespace zkr
