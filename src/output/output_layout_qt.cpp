#include "output/output_layout_qt.h"

#include "common/box_chars.h"
#include "common/codepage.h"
#include "toolkit/widget_kit_qt.h"

namespace kelpa::qt {

namespace {

constexpr int kTabWidth = 8;

class LineBuilder {
public:
    explicit LineBuilder(std::vector<LaidLine>& out) : out_(out) {
        if (out_.empty()) out_.emplace_back();
    }

    void setStyle(const QColor& colour, bool underline) {
        colour_ = colour;
        underline_ = underline;
    }
    void add(QChar c) {
        LaidLine& line = out_.back();
        std::vector<LaidSpan>& spans = line.spans;
        const int at = static_cast<int>(line.text.size());
        if (!spans.empty() && spans.back().colour == colour_ && spans.back().underline == underline_ &&
            spans.back().start + spans.back().length == at)
            ++spans.back().length;
        else
            spans.push_back({at, 1, colour_, underline_});
        line.text.append(c);
    }
    void tab() {
        const int from = static_cast<int>(out_.back().text.size());
        do add(QLatin1Char(' '));
        while (out_.back().text.size() % kTabWidth != 0);
        out_.back().tabs.emplace_back(from, static_cast<int>(out_.back().text.size()));
    }
    void newLine() { out_.emplace_back(); }

private:
    std::vector<LaidLine>& out_;
    QColor colour_;
    bool underline_ = false;
};

}  // namespace

QChar displayChar(unsigned char byte, bool graphics) {
    if (graphics) {
        if (char32_t g = boxGlyph(byte)) return QChar(static_cast<char16_t>(g));
    }
    const char32_t u = cp1252ToUnicode(byte);
    // C0 and C1 controls (the code page's holes keep their C1 values).
    if (u < 0x20 || (u >= 0x7F && u < 0xA0)) return QChar();
    return QChar(static_cast<char16_t>(u));
}

std::vector<LaidLine> layoutLines(const OutputWindow& model, const QColor& plainColour) {
    std::vector<LaidLine> lines;
    layoutMore(lines, model, 0, plainColour);
    return lines;
}

void layoutMore(std::vector<LaidLine>& lines, const OutputWindow& model, std::size_t from,
                const QColor& plainColour) {
    LineBuilder b(lines);
    const std::string_view text = model.text();
    model.forEachRunFrom(from, [&](const OutputWindow::Run& run) {
        const TextStyle& s = run.style;
        b.setStyle(s.plain ? plainColour : qColor(s.colour), s.underline);
        for (std::size_t i = run.begin; i < run.end; ++i) {
            const auto byte = static_cast<unsigned char>(text[i]);
            if (byte == '\n')
                b.newLine();
            else if (byte == '\t')
                b.tab();
            else if (QChar c = displayChar(byte, s.graphics); !c.isNull())
                b.add(c);
        }
    });
}

}  // namespace kelpa::qt
