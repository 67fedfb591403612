// All evaluators as rows of one table, so that the same line can be given to each of them.
// SPDX-License-Identifier: MIT
#pragma once

#include "tcp/tcp_eval.h"

#include <QByteArray>

enum tEvaluatorKind { answersOK, answersNumber, answersSigned, answersText, answersMessage, answersRemote };

struct tEvaluator {
    const char* name;
    tEvaluatorKind kind;
    bool knowsAborts;
    /// Evaluates `line`; with `nowhere` all out parameters but `abort` are null.
    int32_t (*run)(const char* line, uint32_t* abort, bool nowhere);
};

template <typename Value>
int32_t runNumber(int32_t (*evaluate)(const char*, Value*, uint32_t*), const char* line, uint32_t* abort, bool nowhere)
{
    Value value = 0;
    return evaluate(line, nowhere ? nullptr : &value, abort);
}

template <typename Character>
int32_t runText(int32_t (*evaluate)(const char*, short*, Character*, short, uint32_t*), const char* line,
                uint32_t* abort, bool nowhere)
{
    short length = 0;
    Character buffer[64] = {};
    return evaluate(line, nowhere ? nullptr : &length, nowhere ? nullptr : buffer, sizeof buffer, abort);
}

inline int32_t runMessage(const char* line, uint32_t*, bool nowhere)
{
    uint16_t id = 0;
    short length = 0;
    BYTE data[8] = {};
    return nowhere ? tcp_eval_can_message(line, nullptr, nullptr, nullptr)
                   : tcp_eval_can_message(line, &id, &length, data);
}

inline int32_t runRemote(const char* line, uint32_t*, bool nowhere)
{
    short length = 0;
    BYTE data[8] = {};
    return nowhere ? tcp_eval_rtr_message(line, nullptr, nullptr) : tcp_eval_rtr_message(line, &length, data);
}

#define NUMBER_EVALUATOR(kind, type)                                                                                   \
    {                                                                                                                  \
#type, kind, true,                                                                                             \
            [](const char* line, uint32_t* abort,                                                                      \
               bool nowhere) { return runNumber(&tcp_eval_sdo_##type, line, abort, nowhere); }                         \
    }

inline const tEvaluator evaluators[] = {
    { "response", answersOK, false, [](const char* line, uint32_t*, bool) { return tcp_eval_response(line); } },
    { "sdo_response", answersOK, true,
      [](const char* line, uint32_t* abort, bool) { return tcp_eval_sdo_response(line, abort); } },
    NUMBER_EVALUATOR(answersNumber, unsigned8),
    NUMBER_EVALUATOR(answersNumber, unsigned16),
    NUMBER_EVALUATOR(answersNumber, unsigned32),
    NUMBER_EVALUATOR(answersSigned, integer8),
    NUMBER_EVALUATOR(answersSigned, integer16),
    NUMBER_EVALUATOR(answersSigned, integer32),
    { "domain", answersText, true,
      [](const char* line, uint32_t* abort, bool nowhere) {
          return runText(&tcp_eval_sdo_domain, line, abort, nowhere);
      } },
    { "string", answersText, true,
      [](const char* line, uint32_t* abort, bool nowhere) {
          return runText(&tcp_eval_sdo_string, line, abort, nowhere);
      } },
    { "can_message", answersMessage, false, &runMessage },
    { "rtr_message", answersRemote, false, &runRemote },
};
#undef NUMBER_EVALUATOR
