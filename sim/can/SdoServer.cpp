// The SDO server of a simulated device: requests of 8 bytes in, answers out (CiA 301, without block transfer).
// SPDX-License-Identifier: MIT
#include "can/SdoServer.h"

#include "can/SdoFrames.h"

#include <algorithm>
#include <iterator>

namespace
{

// Fills an upload beyond the end of its value.
constexpr char surplusByte = 0x55;

unsigned unusedOf(const QByteArray& request, unsigned mask, unsigned shift)
{
    return (byteAt(request, 0) & mask) >> shift;
}

// The size of a segmented download, or an abort code.
quint32 numberIn(const QByteArray& request)
{
    return static_cast<quint32>(numberOf(request.mid(sdoDataAt), { kindUnsigned, 4 }));
}

} // namespace

const CSdoServer::tCommand CSdoServer::commands[] = {
    { ccsInitiateDownload, phaseInitiated, &CSdoServer::initiateDownload },
    { ccsInitiateUpload, phaseInitiated, &CSdoServer::initiateUpload },
    { ccsDownloadSegment, phaseDownload, &CSdoServer::downloadSegment },
    { ccsUploadSegment, phaseUpload, &CSdoServer::uploadSegment },
};

bool CSdoServer::isInitiate(const QByteArray& request)
{
    return request.size() == sdoFrameSize &&
           (specifierOf(request) == ccsInitiateDownload || specifierOf(request) == ccsInitiateUpload);
}

QByteArray CSdoServer::answer(const QByteArray& request)
{
    if (request.size() != sdoFrameSize)
        return QByteArray();
    if (specifierOf(request) == ccsAbort) {
        const tAbortCode code = numberIn(request);
        finish(code != abortNone ? code : abortGeneral);
        return QByteArray();
    }
    if (isInitiate(request))
        begin(request);
    ++m_answerCount;
    return execute(request).leftJustified(sdoFrameSize, m_defects.filler);
}

void CSdoServer::begin(const QByteArray& request)
{
    m_multiplexor = request.mid(sdoMultiplexorAt, sdoMultiplexorSize);
    m_transfer = tSdoTransfer();
    m_transfer.writes = specifierOf(request) == ccsInitiateDownload;
    m_transfer.index = indexIn(request);
    m_transfer.subIndex = subIndexIn(request);
    m_phase = phaseInitiated;
    m_answerCount = 0;
    m_toggle = 0;
}

// The answer without the unused bytes at its end.
QByteArray CSdoServer::execute(const QByteArray& request)
{
    const auto command = std::find_if(std::begin(commands), std::end(commands), [&](const tCommand& each) {
        return each.specifier == specifierOf(request) && each.phase == m_phase;
    });
    if (command != std::end(commands))
        return (this->*command->handle)(request);
    // Segments carry no multiplexor. Outside of a transfer their abort has that of the last one.
    const unsigned specifier = specifierOf(request);
    if (!busy() && specifier != ccsDownloadSegment && specifier != ccsUploadSegment)
        m_multiplexor = request.mid(sdoMultiplexorAt, sdoMultiplexorSize);
    return abort(abortCommand);
}

QByteArray CSdoServer::initiateDownload(const QByteArray& request)
{
    QByteArray confirmation = oneByte(scsInitiateDownload) + m_multiplexor;
    const bool sizeGiven = (byteAt(request, 0) & sdoSizeGiven) != 0;
    if ((byteAt(request, 0) & sdoExpedited) != 0) {
        const auto type = m_node.typeOf(m_transfer.index, m_transfer.subIndex);
        qsizetype size = sdoExpeditedSize;
        if (sizeGiven)
            size -= unusedOf(request, sdoExpeditedUnusedMask, sdoExpeditedUnusedShift);
        else if (type && type->width != 0)
            size = std::min<qsizetype>(size, type->width);
        m_transfer.data = request.mid(sdoDataAt, size);
        return m_defects.abortedAnswer == m_answerCount ? abort(m_defects.abortCode) : writeValue(confirmation);
    }
    m_announced = sizeGiven ? std::optional<qsizetype>(numberIn(request)) : std::nullopt;
    if (m_defects.abortedAnswer == m_answerCount)
        return abort(m_defects.abortCode);
    if (const tAbortCode code = m_node.checkWrite(m_transfer.index, m_transfer.subIndex, m_announced))
        return abort(code);
    if (m_announced && *m_announced > longestDownload)
        return abort(abortMemory);
    m_phase = phaseDownload;
    return confirmation;
}

QByteArray CSdoServer::downloadSegment(const QByteArray& request)
{
    const unsigned command = byteAt(request, 0);
    const bool last = (command & sdoLastSegment) != 0;
    if ((command & sdoToggle) != m_toggle)
        return abort(abortToggle);
    if (m_defects.abortedAnswer == m_answerCount)
        return abort(m_defects.abortCode);
    const qsizetype count = sdoSegmentSize - unusedOf(request, sdoSegmentUnusedMask, sdoSegmentUnusedShift);
    if (m_transfer.data.size() + count > longestDownload)
        return abort(abortMemory);
    m_transfer.data += request.mid(sdoSegmentAt, count);
    const qsizetype size = m_transfer.data.size();
    if (m_announced && (size > *m_announced || (last && size != *m_announced)))
        return abort(abortLength);
    QByteArray confirmation = oneByte(scsDownloadSegment | m_toggle);
    m_toggle ^= sdoToggle;
    if (!last)
        return confirmation;
    return m_defects.lastAborted ? abort(m_defects.abortCode) : writeValue(confirmation);
}

// Ends a download whose data are complete.
QByteArray CSdoServer::writeValue(const QByteArray& confirmation)
{
    if (const tAbortCode code = m_node.write(m_transfer.index, m_transfer.subIndex, m_transfer.data))
        return abort(code);
    finish(abortNone);
    return confirmation;
}

QByteArray CSdoServer::initiateUpload(const QByteArray&)
{
    if (m_defects.abortedAnswer == m_answerCount)
        return abort(m_defects.abortCode);
    const tSdoData value = m_node.read(m_transfer.index, m_transfer.subIndex);
    if (value.abortCode != abortNone)
        return abort(value.abortCode);
    m_transfer.data = value.data;
    const qsizetype size = value.data.size();
    // An expedited answer has 1 to 4 bytes of data: an empty value is uploaded in segments.
    if (size > 0 && size <= sdoExpeditedSize && !m_defects.segmentsUpload()) {
        const auto unused = static_cast<unsigned>(sdoExpeditedSize - size) << sdoExpeditedUnusedShift;
        finish(abortNone);
        return oneByte(scsInitiateUpload | unused | sdoExpedited | sdoSizeGiven) + m_multiplexor + value.data;
    }
    m_phase = phaseUpload;
    m_source = uploadedBytes();
    m_position = 0;
    m_emptySegments = m_defects.emptySegments;
    return oneByte(scsInitiateUpload | sdoSizeGiven) + m_multiplexor + littleEndian(static_cast<quint64>(size), 4);
}

QByteArray CSdoServer::uploadSegment(const QByteArray& request)
{
    if ((byteAt(request, 0) & sdoToggle) != m_toggle)
        return abort(abortToggle);
    const bool endless = m_defects.endlessSegments != 0;
    if (m_defects.abortedAnswer == m_answerCount || (endless && m_position == m_source.size()))
        return abort(m_defects.abortCode);
    QByteArray part;
    if (m_emptySegments == 0)
        part = m_source.mid(m_position, sdoSegmentSize);
    else
        --m_emptySegments;
    m_position += part.size();
    const bool last = m_position == m_source.size() && m_emptySegments == 0 && !endless;
    const auto unused = static_cast<unsigned>(sdoSegmentSize - part.size()) << sdoSegmentUnusedShift;
    const unsigned command = scsUploadSegment | m_toggle | unused | (last ? sdoLastSegment : 0);
    m_toggle ^= sdoToggle;
    if (last)
        finish(abortNone);
    return oneByte(command) + part;
}

// The value, or what the defects make of it.
QByteArray CSdoServer::uploadedBytes() const
{
    if (m_defects.endlessSegments == 0)
        return m_transfer.data + QByteArray(static_cast<qsizetype>(m_defects.surplus), surplusByte);
    const QByteArray pattern = m_transfer.data.isEmpty() ? QByteArray(1, surplusByte) : m_transfer.data;
    const qsizetype size = static_cast<qsizetype>(m_defects.endlessSegments) * sdoSegmentSize;
    return pattern.repeated(size / pattern.size() + 1).left(size);
}

QByteArray CSdoServer::abort(tAbortCode code)
{
    finish(code);
    return abortFrame(m_multiplexor, code);
}

void CSdoServer::finish(tAbortCode code)
{
    if (!busy())
        return;
    m_phase = phaseIdle;
    m_transfer.abortCode = code;
    if (m_report)
        m_report(m_transfer);
}
