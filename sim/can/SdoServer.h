// The SDO server of a simulated device: requests of 8 bytes in, answers out (CiA 301, without block transfer).
// SPDX-License-Identifier: MIT
#pragma once

#include "can/SdoTransfer.h"
#include "device/SimulatedNode.h"

#include <QByteArray>

#include <functional>
#include <optional>

/// The longest value that can be downloaded, in bytes.
constexpr qsizetype longestDownload = 65536;

/// What a server does wrong on request; by default nothing. Answers are counted from 1, the answer to the initiate.
struct tSdoDefects {
    tAbortCode abortCode = abortGeneral; // of the aborts below
    quint32 abortedAnswer = 0;           // an abort in place of this answer; 0: none
    bool lastAborted = false;            // an abort in place of the confirmation of a download's last segment
    quint32 emptySegments = 0;           // of an upload, before those with data
    quint32 surplus = 0;                 // bytes of an upload after the value
    quint32 endlessSegments = 0;         // of an upload, none marked as the last, before an abort; 0: the upload ends
    char filler = 0;                     // the unused bytes of answers

    /// Whether short values are uploaded in segments, too.
    bool segmentsUpload() const { return emptySegments != 0 || surplus != 0 || endlessSegments != 0; }
};

/// One transfer at a time. A new initiate replaces the current transfer; an abort by either side ends it.
class CSdoServer
{
public:
    /// `node` is borrowed and must outlive this.
    explicit CSdoServer(CSimulatedNode& node) : m_node(node) {}

    /// Takes a request.
    /// @return the answer, 8 bytes; empty after an abort and after a frame that is not 8 bytes long
    QByteArray answer(const QByteArray& request);

    /// Drops the current transfer without an answer or a report.
    void reset() { m_phase = phaseIdle; }

    /// Whether a transfer is under way.
    bool busy() const { return m_phase != phaseIdle; }

    /// Answers since the last initiate, including the one to it.
    quint32 answerCount() const { return m_answerCount; }

    /// Bytes 1 to 3 of the last initiate: index and sub-index.
    QByteArray multiplexor() const { return m_multiplexor; }

    /// For the transfers that start from now on.
    void setDefects(const tSdoDefects& defects) { m_defects = defects; }

    /// `report` is called from within `answer` when a transfer ends, but not for one that a new initiate replaces.
    void setReport(const std::function<void(const tSdoTransfer&)>& report) { m_report = report; }

    /// Whether the request begins a transfer.
    static bool isInitiate(const QByteArray& request);

private:
    enum tPhase { phaseIdle, phaseInitiated, phaseDownload, phaseUpload };
    struct tCommand {
        unsigned specifier;
        tPhase phase; // in which the command is allowed
        QByteArray (CSdoServer::*handle)(const QByteArray& request);
    };
    static const tCommand commands[];

    void begin(const QByteArray& request);
    QByteArray execute(const QByteArray& request);
    QByteArray initiateDownload(const QByteArray& request);
    QByteArray initiateUpload(const QByteArray& request);
    QByteArray downloadSegment(const QByteArray& request);
    QByteArray uploadSegment(const QByteArray& request);
    QByteArray writeValue(const QByteArray& confirmation);
    QByteArray uploadedBytes() const;
    QByteArray abort(tAbortCode code);
    void finish(tAbortCode code);

    CSimulatedNode& m_node;
    tSdoDefects m_defects;
    std::function<void(const tSdoTransfer&)> m_report;
    tPhase m_phase = phaseIdle;
    QByteArray m_multiplexor = QByteArray(3, '\0');
    quint32 m_answerCount = 0;
    tSdoTransfer m_transfer;
    std::optional<qsizetype> m_announced; // the size of a segmented download
    QByteArray m_source;                  // the bytes of a segmented upload
    qsizetype m_position = 0;             // of the next byte in m_source
    quint32 m_emptySegments = 0;          // still to come
    unsigned m_toggle = 0;                // expected in the next segment
};
