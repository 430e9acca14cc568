#pragma once
#include "frontend/TextPen.h"

#include <algorithm>
#include <string>
#include <vector>

namespace qvtest {

// Records every text the screens write while alive.
struct TextLog {
    TextLog() { CTextPen::SetRecorder([this](const WrittenText& t) { texts.push_back(t); }); }
    ~TextLog() { CTextPen::SetRecorder(nullptr); }

    // The first text that reads exactly so, or null.
    const WrittenText* Find(const std::string& text) const
    {
        const auto it = std::find_if(texts.begin(), texts.end(), [&](const WrittenText& t) { return t.text == text; });
        return it == texts.end() ? nullptr : &*it;
    }

    std::vector<WrittenText> texts;
};

} // namespace qvtest
