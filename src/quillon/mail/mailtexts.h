#pragma once

#include "quillon/text/owntexts.h"

/// What the making and the sending of a mail say. Those of the second group go on behind "failed:".
namespace quillon::mailtexts {

inline constexpr char16_t section[] = u"Transport";

// What is being done, for the progress and for the front of a failure.
inline constexpr OwnText connecting{section, u"CONNECTING", u"Connecting to %1, port %2,"};
inline constexpr OwnText connectingByProxy{section, u"CONNECTING_BY_PROXY",
                                           u"Connecting to %1, port %2, through the proxy %3, port %4,"};
inline constexpr OwnText securing{section, u"SECURING", u"Securing the connection to %1 (TLS)"};
inline constexpr OwnText awaitingGreeting{section, u"AWAITING_GREETING", u"Waiting for the greeting of %1"};
inline constexpr OwnText greetingEhlo{section, u"GREETING_EHLO", u"Greeting %1 (EHLO)"};
inline constexpr OwnText greetingHelo{section, u"GREETING_HELO", u"Greeting %1 (HELO)"};
inline constexpr OwnText askingForTls{section, u"ASKING_FOR_TLS", u"Asking %1 for encryption (STARTTLS)"};
inline constexpr OwnText loggingIn{section, u"LOGGING_IN", u"Logging in at %1"};
inline constexpr OwnText loggingInBy{section, u"LOGGING_IN_BY", u"Logging in at %1 (AUTH %2)"};
inline constexpr OwnText connected{section, u"CONNECTED", u"Connected to %1"};
inline constexpr OwnText sendingAddresses{section, u"SENDING_ADDRESSES", u"Sending the addresses"};
inline constexpr OwnText takingBack{section, u"TAKING_BACK", u"Taking the message back (RSET)"};
inline constexpr OwnText sendingPercent{section, u"SENDING_PERCENT", u"Sending the message: %1 %"};
inline constexpr OwnText sendingMessage{section, u"SENDING_MESSAGE", u"Sending the message"};
inline constexpr OwnText awaitingAcceptance{section, u"AWAITING_ACCEPTANCE", u"Waiting for the message to be accepted"};
inline constexpr OwnText sendingCommand{section, u"SENDING_COMMAND", u"Sending %1"};
inline constexpr OwnText commandSender{section, u"COMMAND_SENDER", u"the sender (MAIL FROM)"};
inline constexpr OwnText commandRecipient{section, u"COMMAND_RECIPIENT", u"the recipient %1 (RCPT TO)"};
inline constexpr OwnText commandMessage{section, u"COMMAND_MESSAGE", u"the message (DATA)"};

// Why it failed.
inline constexpr OwnText outOfTurn{section, u"OUT_OF_TURN", u"the server talks out of turn"};
inline constexpr OwnText refusedMidway{section, u"REFUSED_MIDWAY",
                                       u"the server has refused the message while it was sent"};
inline constexpr OwnText endedSession{section, u"ENDED_SESSION", u"the server has ended the session"};
inline constexpr OwnText notTaken{section, u"NOT_TAKEN", u"the server did not take the message"};
inline constexpr OwnText closedConnection{section, u"CLOSED_CONNECTION", u"the server has closed the connection"};
inline constexpr OwnText noAnswer{section, u"NO_ANSWER", u"there was no answer for %1 s"};
inline constexpr OwnText hostNotFound{section, u"HOST_NOT_FOUND", u"the server was not found"};
inline constexpr OwnText proxyUnreachable{section, u"PROXY_UNREACHABLE", u"the proxy cannot be reached (%1)"};
inline constexpr OwnText proxyClosed{section, u"PROXY_CLOSED", u"the proxy has closed the connection"};
inline constexpr OwnText proxyNotSocks{section, u"PROXY_NOT_SOCKS", u"the answer of the proxy is not SOCKS5"};
inline constexpr OwnText proxyWantsLogin{section, u"PROXY_WANTS_LOGIN", u"the proxy wants a user name and a password"};
inline constexpr OwnText proxyNoMethod{
    section, u"PROXY_NO_METHOD", u"the proxy accepts neither a user name with a password nor a connection without"};
inline constexpr OwnText proxyLoginRefused{section, u"PROXY_LOGIN_REFUSED",
                                           u"the proxy does not accept the user name or the password"};
inline constexpr OwnText proxyGeneralFailure{section, u"PROXY_GENERAL_FAILURE", u"the proxy reports a general failure"};
inline constexpr OwnText proxyNotAllowed{section, u"PROXY_NOT_ALLOWED", u"the proxy does not allow this connection"};
inline constexpr OwnText proxyNetworkUnreachable{section, u"PROXY_NETWORK_UNREACHABLE",
                                                 u"the proxy reports that the network cannot be reached"};
inline constexpr OwnText proxyHostUnreachable{section, u"PROXY_HOST_UNREACHABLE",
                                              u"the proxy reports that the host cannot be reached"};
inline constexpr OwnText proxyServerRefused{section, u"PROXY_SERVER_REFUSED",
                                            u"the proxy reports that the server refused the connection"};
inline constexpr OwnText proxyTimeToLive{section, u"PROXY_TIME_TO_LIVE",
                                         u"the proxy reports that the time to live is over"};
inline constexpr OwnText proxyNoCommand{section, u"PROXY_NO_COMMAND", u"the proxy does not know the command"};
inline constexpr OwnText proxyNoAddressType{section, u"PROXY_NO_ADDRESS_TYPE",
                                            u"the proxy does not know this kind of address"};
inline constexpr OwnText proxyUnknownReply{section, u"PROXY_UNKNOWN_REPLY",
                                           u"the proxy answers with the unknown code %1"};
inline constexpr OwnText answerTooSlow{section, u"ANSWER_TOO_SLOW", u"its answer was not complete after %1 s"};
inline constexpr OwnText plainWords{section, u"PLAIN_WORDS", u"the server answered in plain text, “%1”"};
inline constexpr OwnText tooManyFilesOpen{section, u"TOO_MANY_FILES_OPEN", u"this program has too many files open"};
inline constexpr OwnText noStartTls{section, u"NO_STARTTLS",
                                    u"the server does not offer it, and nothing was sent in the clear"};
inline constexpr OwnText moreBehindStartTls{section, u"MORE_BEHIND_STARTTLS",
                                            u"there was more behind the answer to STARTTLS"};
inline constexpr OwnText loginEndedEarly{section, u"LOGIN_ENDED_EARLY",
                                         u"the server ended the login before it had proved itself"};
inline constexpr OwnText noAuth{section, u"NO_AUTH",
                                u"the server does not offer AUTH, although the account has a user name"};
inline constexpr OwnText noKnownMechanism{section, u"NO_KNOWN_MECHANISM",
                                          u"none of the mechanisms that the server offers is known here (%1)"};
inline constexpr OwnText loginNotPrepared{section, u"LOGIN_NOT_PREPARED",
                                          u"the user name or the password cannot be prepared for %1"};
inline constexpr OwnText challengeNotBase64{section, u"CHALLENGE_NOT_BASE64",
                                            u"the server's challenge is not in Base64"};
inline constexpr OwnText exchangeWithoutSense{
    section, u"EXCHANGE_WITHOUT_SENSE", u"the exchange of %1 with the server makes no sense or proves another server"};
inline constexpr OwnText lineWithoutEnd{section, u"LINE_WITHOUT_END", u"its answer has a line without end, “%1”"};
inline constexpr OwnText onlyBlankLines{section, u"ONLY_BLANK_LINES", u"it answers with nothing but blank lines"};
inline constexpr OwnText notSmtp{section, u"NOT_SMTP", u"its answer is not SMTP, “%1”"};
inline constexpr OwnText tooManyLines{section, u"TOO_MANY_LINES", u"its answer has too many lines"};
inline constexpr OwnText tlsFailed{section, u"TLS_FAILED", u"TLS failed"};
inline constexpr OwnText hostNotVerified{section, u"HOST_NOT_VERIFIED", u"“%1” cannot be verified"};
inline constexpr OwnText handshakeEnded{section, u"HANDSHAKE_ENDED", u"the server has ended the handshake"};
inline constexpr OwnText certificateOfOther{section, u"CERTIFICATE_OF_OTHER",
                                            u"the server's certificate is for another host name"};
inline constexpr OwnText certificateRejected{section, u"CERTIFICATE_REJECTED",
                                             u"the server's certificate is not accepted (%1)"};
inline constexpr OwnText fileUnreadable{section, u"FILE_UNREADABLE", u"the file “%1” can no longer be read"};
inline constexpr OwnText fileShorter{section, u"FILE_SHORTER", u"the file “%1” has become shorter while it was sent"};
inline constexpr OwnText fileLonger{section, u"FILE_LONGER", u"the file “%1” has become longer while it was sent"};

// Whole sentences around these: %1 is what was being done.
inline constexpr OwnText failed{section, u"FAILED", u"%1 failed: %2."};
inline constexpr OwnText failedAfter{section, u"FAILED_AFTER", u"%1 failed: %2 (its last answer was “%3”)."};
inline constexpr OwnText failedWith{section, u"FAILED_WITH", u"%1 failed: %2, “%3”."};
inline constexpr OwnText failedByAnswer{section, u"FAILED_BY_ANSWER", u"%1 failed: the server answered “%2”."};
inline constexpr OwnText failedByFile{section, u"FAILED_BY_FILE", u"%1 failed: %2; nothing was delivered."};
inline constexpr OwnText refused{section, u"REFUSED", u"The server refused %1: “%2”."};
inline constexpr OwnText refusedAtEnd{section, u"REFUSED_AT_END",
                                      u"The server refused the message after its end: “%1”."};
inline constexpr OwnText sessionEnded{section, u"SESSION_ENDED", u"The server has ended the session: “%1”."};

// Before anything is sent.
inline constexpr OwnText notConnected{section, u"NOT_CONNECTED",
                                      u"The message was not sent: there is no connection to a mail server."};
inline constexpr OwnText senderEmpty{section, u"SENDER_EMPTY",
                                     u"The message was not sent: the address of the sender is empty."};
inline constexpr OwnText recipientEmpty{section, u"RECIPIENT_EMPTY",
                                        u"The message was not sent: the address of the recipient is empty."};
inline constexpr OwnText senderInvalid{
    section, u"SENDER_INVALID",
    u"The message was not sent: “%1”, the address of the sender, is not an e-mail address."};
inline constexpr OwnText recipientInvalid{
    section, u"RECIPIENT_INVALID",
    u"The message was not sent: “%1”, the address of the recipient, is not an e-mail address."};
inline constexpr OwnText noRecipient{section, u"NO_RECIPIENT", u"The message was not sent: it has no recipient."};
inline constexpr OwnText utf8ForSender{
    section, u"UTF8_FOR_SENDER",
    u"The message was not sent: the server does not offer SMTPUTF8, which the address of the sender, “%1”, needs."};
inline constexpr OwnText utf8ForHeader{
    section, u"UTF8_FOR_HEADER",
    u"The message was not sent: the server does not offer SMTPUTF8, which an address in its header needs."};
inline constexpr OwnText utf8ForRecipient{
    section, u"UTF8_FOR_RECIPIENT",
    u"The message was not sent: the server does not offer SMTPUTF8, which the address “%1” needs."};
inline constexpr OwnText tooBig{
    section, u"TOO_BIG",
    u"The message was not sent: it has %1 octets, and the server takes messages of at most %2 octets."};
inline constexpr OwnText noServer{section, u"NO_SERVER", u"Connecting failed: no mail server is given."};
inline constexpr OwnText serverInvalid{section, u"SERVER_INVALID",
                                       u"Connecting failed: “%1” is not the name of a mail server."};
inline constexpr OwnText portInvalid{section, u"PORT_INVALID",
                                     u"Connecting failed: %1 is not a port; ports go from 1 to 65535."};
inline constexpr OwnText proxyInvalid{section, u"PROXY_INVALID",
                                      u"Connecting failed: “%1” is not the name of a proxy server."};
inline constexpr OwnText proxyPortInvalid{
    section, u"PROXY_PORT_INVALID", u"Connecting failed: %1 is not a port of the proxy; ports go from 1 to 65535."};
inline constexpr OwnText proxyLoginTooLong{
    section, u"PROXY_LOGIN_TOO_LONG",
    u"Connecting failed: the user name or the password for the proxy is longer than 255 octets."};

// While a mail is made.
inline constexpr OwnText addressInvalid{section, u"ADDRESS_INVALID",
                                        u"The mail cannot be made: \"%1\" is not a valid e-mail address."};
inline constexpr OwnText fromInvalid{section, u"FROM_INVALID",
                                     u"The mail cannot be made: \"%1\" is not a valid sender address."};
inline constexpr OwnText dateInvalid{section, u"DATE_INVALID", u"The mail cannot be made: \"%1\" is not a valid date."};
inline constexpr OwnText fileNotAdded{section, u"FILE_NOT_ADDED", u"The file \"%1\" cannot be put into the mail: %2."};
inline constexpr OwnText fileIsFolder{section, u"FILE_IS_FOLDER", u"it is a folder"};
inline constexpr OwnText fileNotRegular{section, u"FILE_NOT_REGULAR", u"it is not a regular file"};

} // namespace quillon::mailtexts
