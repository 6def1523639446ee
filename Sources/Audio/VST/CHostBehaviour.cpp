// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/VST/CHostBehaviour.h"

#include <initializer_list>

namespace brt {
namespace {

// Older hosts count on two channels.
constexpr int kMultichannelVersion = 2300;

bool matchesAny(CStringView text, std::initializer_list<CStringView> patterns) noexcept {
    for (const CStringView pattern : patterns)
        if (matchesWildcard(text, pattern)) return true;
    return false;
}

}  // namespace

bool matchesWildcard(CStringView text, CStringView pattern) noexcept {
    int at = 0;
    int patternAt = 0;
    // Where the last "*" stands, and where the run begins that it is tried with.
    int star = -1;
    int runEnd = 0;
    while (at < text.length()) {
        const bool isInside = patternAt < pattern.length();
        if (isInside && pattern[patternAt] == u'*') {
            star = patternAt++;
            runEnd = at;
        } else if (isInside && (pattern[patternAt] == u'?' || pattern[patternAt] == text[at])) {
            ++patternAt;
            ++at;
        } else if (star >= 0) {
            patternAt = star + 1;
            at = ++runEnd;
        } else {
            return false;
        }
    }
    while (patternAt < pattern.length() && pattern[patternAt] == u'*') ++patternAt;
    return patternAt == pattern.length();
}

CHostBehaviour CHostBehaviour::find(int version, CStringView product, CStringView vendor, bool isForced2ch,
                                    bool isLockAsked) {
    CString name;
    CString maker;
    CString(product).toUpper(name);
    CString(vendor).toUpper(maker);
    CHostBehaviour behaviour;
    behaviour.isMultichannelAllowed = version >= kMultichannelVersion && !isForced2ch && name != "SONY ACID PRO" &&
                                      !matchesWildcard(name, "*PREMIERE*");
    behaviour.needsFunctionLock = isLockAsked || matchesAny(name, {"*WAVELAB*", "*SAMPLITUDE*", "*CHAINER*"});
    behaviour.hasAutoRouting = !matchesAny(maker, {"*CAKEWALK*", "*TWELVE TONE*"}) &&
                               !matchesAny(name, {"*CAKEWALK*", "*SONAR*", "*FX TELEPORT*"});
    behaviour.focusesOnClick =
        !matchesAny(maker, {"*STEINBERG*", "*FXPANSION*"}) && !matchesAny(name, {"*WAVELAB*", "*CUBASE*", "*FRUITY*"});
    return behaviour;
}

}  // namespace brt
