// The packets of a film in the part that is wanted: those of its pictures, and beside them those that are copied.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "host/film/clock_jumps.h"
#include "host/film/damage_log.h"
#include "host/film/film_origin.h"

namespace clarivex {

class FilmPackets {
public:
    enum class Kind { picture, other, end };

    /// withCompanions  packets of sound and subtitles are kept
    FilmPackets(const FilmOrigin& film, const PartOptions& wanted, bool withCompanions, Report& report,
                DamageLog& damage);

    /// Reads a packet: one of the pictures is then in Packet, another has been kept or dropped.
    Kind Read();

    const AVPacket& Packet() const { return *packet; }

    /// Packets of other streams that were kept since they were last taken, in the order of the file.
    size_t CompanionCount() const { return companions.size(); }
    void TakeCompanions(std::vector<std::shared_ptr<AVPacket>>& into);

    /// Limits the part to so many steps of the pictures' time base behind its start.
    void EndPartAt(int64_t steps) { partEnd = std::min(partEnd, steps); }
    int64_t PartEnd() const { return partEnd; }

    /// Behind the last picture wanted: reads on for a while, to keep what other streams have for the part's time. False when
    /// there is no more.
    bool ReadBehindPart();

    /// A time of the pictures' stream in seconds from the film's first moment on; nothing for an unknown one.
    std::optional<double> SecondsAt(int64_t steps) const;

private:
    int Take();
    void TellEnd(int reason);
    bool CutToPart(AVPacket& companion, const AVStream& stream) const;
    void KeepCompanion();

    const FilmOrigin& origin;
    PartOptions part;
    bool keepsCompanions;
    Report& told;
    DamageLog& damaged;
    ClockJumps clockJumps;
    AvPointer<AVPacket> packet = MakeAvPacket();
    std::vector<std::shared_ptr<AVPacket>> companions;
    bool ended = false;
    bool clockJumped = false;
    int64_t partEnd = INT64_MAX;
    double lastEnd = 0.0;  // of all packets, in seconds from the film's first moment on
};

constexpr size_t mostCompanions = 256;  ///< that should wait for a picture

}  // namespace clarivex
