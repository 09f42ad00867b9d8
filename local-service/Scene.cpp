#include "Scene.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <array>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace localservice {

namespace {

constexpr int sceneWidth = 800;
constexpr int sceneHeight = 600;
constexpr int movieWidth = 320;
constexpr int movieHeight = 240;
constexpr int framesPerSecond = 12;
constexpr int movieFrames = 48;

enum Feature : unsigned {
    Sun = 1,
    Stars = 2,
    Sea = 4,
    Snow = 8,
    Boat = 16,
    Houses = 32,
    Trees = 64,
    Rails = 128
};

struct SceneDescription {
    std::string_view name;
    QRgb skyTop;
    QRgb skyBottom;
    QRgb far;
    QRgb near;
    unsigned features;
};

constexpr std::array<SceneDescription, 8> scenes { {
    { "harbour", 0xff4a6fa5, 0xffffd6a5, 0xff5c6b8a, 0xff2b3a55, Sun | Sea | Boat | Houses },
    { "sunset", 0xff6a2c70, 0xfff9a03f, 0xff7a3b69, 0xff33193d, Sun | Sea },
    { "platform", 0xff1d2b53, 0xff5f6caf, 0xff39426b, 0xff20253f, Snow | Rails | Houses },
    { "stars", 0xff05060f, 0xff26315f, 0xff141a35, 0xff0a0d1c, Stars | Trees },
    { "garden", 0xff9bd4f5, 0xfff4f9d9, 0xff8fbf6a, 0xff4e8a3e, Sun | Trees },
    { "blizzard", 0xffb9c6d3, 0xffeef3f7, 0xff94a7ba, 0xff6d8299, Snow | Trees | Houses },
    { "pier", 0xff0f4c5c, 0xff9fd8cb, 0xff1f6f78, 0xff123840, Sea | Boat | Stars },
    { "valley", 0xfff7c59f, 0xfffff1d6, 0xffb56576, 0xff6d597a, Sun | Rails | Trees },
} };

std::string pngBytes(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    // Quick to write matters more than small: all of this is drawn while somebody waits for the first start.
    image.save(&buffer, "PNG", 85);
    return bytes.toStdString();
}

class ScenePainter {
public:
    ScenePainter(QImage& image, const SceneDescription& scene)
        : m_scene(scene)
        , m_painter(&image)
        , m_random(static_cast<unsigned>(scene.skyTop ^ scene.near))
    {
        m_painter.setRenderHint(QPainter::Antialiasing);
        m_painter.setPen(Qt::NoPen);
    }

    void draw()
    {
        drawSky();
        drawHills(330, 46, QColor(m_scene.far));
        if (has(Houses))
            drawHouses();
        if (has(Sea))
            drawSea();
        else
            drawHills(440, 34, QColor(m_scene.near));
        if (has(Trees))
            drawTrees();
        if (has(Rails))
            drawRails();
        if (has(Boat))
            drawBoat();
        if (has(Snow))
            drawDots(260, QColor(255, 255, 255, 220), sceneHeight, 4.5);
    }

private:
    [[nodiscard]] bool has(Feature feature) const { return (m_scene.features & feature) != 0; }
    double anywhere(double limit) { return limit * static_cast<double>(m_random() % 10'000) / 10'000.0; }

    void drawSky()
    {
        QLinearGradient sky(0, 0, 0, 420);
        sky.setColorAt(0, QColor(m_scene.skyTop));
        sky.setColorAt(1, QColor(m_scene.skyBottom));
        m_painter.fillRect(0, 0, sceneWidth, sceneHeight, sky);
        if (has(Stars))
            drawDots(170, QColor(255, 255, 240, 230), 360, 2.2);
        if (!has(Sun))
            return;
        for (int ring = 4; ring >= 0; --ring) {
            m_painter.setBrush(QColor(255, 240, 200, ring == 0 ? 255 : 34));
            m_painter.drawEllipse(QPointF(560, 240), 52 + 30 * ring, 52 + 30 * ring);
        }
    }

    void drawDots(int count, const QColor& color, double height, double largest)
    {
        m_painter.setBrush(color);
        for (int i = 0; i < count; ++i) {
            const double radius = 0.6 + anywhere(largest);
            m_painter.drawEllipse(QPointF(anywhere(sceneWidth), anywhere(height)), radius, radius);
        }
    }

    void drawHills(double y, double height, const QColor& color)
    {
        const double phase = anywhere(6.28);
        QPainterPath hills;
        hills.moveTo(0, sceneHeight);
        for (int x = 0; x <= sceneWidth; x += 8)
            hills.lineTo(x,
                y + height * (std::sin(x / 130.0 + phase) + 0.5 * std::sin(x / 47.0 + 2 * phase)));
        hills.lineTo(sceneWidth, sceneHeight);
        m_painter.setBrush(color);
        m_painter.drawPath(hills);
    }

    void drawHouses()
    {
        for (int x = 40; x < sceneWidth - 80; x += 62) {
            const double height = 60 + anywhere(80);
            m_painter.setBrush(QColor(m_scene.near).lighter(static_cast<int>(105 + anywhere(30))));
            m_painter.drawRect(QRectF(x, 420 - height, 54, height + 60));
            m_painter.setBrush(QColor(255, 214, 120));
            for (int window = 0; window < 4; ++window) {
                const int column = window % 2;
                const int row = window / 2;
                if (m_random() % 3)
                    m_painter.drawRect(QRectF(x + 9 + 24 * column, 434 - height + 26 * row, 12, 14));
            }
        }
    }

    void drawSea()
    {
        QLinearGradient water(0, 400, 0, sceneHeight);
        water.setColorAt(0, QColor(m_scene.skyBottom).darker(130));
        water.setColorAt(1, QColor(m_scene.near));
        m_painter.fillRect(QRectF(0, 400, sceneWidth, 200), water);
        m_painter.setBrush(QColor(255, 255, 255, 60));
        for (int i = 0; i < 70; ++i) {
            const double depth = anywhere(1);
            m_painter.drawRoundedRect(
                QRectF(anywhere(sceneWidth), 404 + 190 * depth, 14 + 60 * depth, 1.5 + 3 * depth),
                2,
                2);
        }
    }

    void drawBoat()
    {
        QPainterPath hull;
        hull.moveTo(180, 470);
        hull.lineTo(350, 470);
        hull.quadTo(330, 512, 300, 512);
        hull.lineTo(216, 512);
        hull.closeSubpath();
        m_painter.setBrush(QColor(0xc8, 0x4b, 0x31));
        m_painter.drawPath(hull);
        QPainterPath sail;
        sail.moveTo(262, 330);
        sail.quadTo(346, 410, 338, 458);
        sail.lineTo(262, 458);
        sail.closeSubpath();
        m_painter.setBrush(QColor(0xfa, 0xf3, 0xe0));
        m_painter.drawPath(sail);
    }

    void drawTrees()
    {
        for (int i = 0; i < 13; ++i) {
            const double x = anywhere(sceneWidth);
            const double base = 500 + anywhere(80);
            const double height = 70 + anywhere(90);
            QPainterPath tree;
            tree.moveTo(x, base - height);
            tree.lineTo(x + height / 3.2, base);
            tree.lineTo(x - height / 3.2, base);
            tree.closeSubpath();
            m_painter.setBrush(QColor(m_scene.near).darker(static_cast<int>(110 + anywhere(50))));
            m_painter.drawPath(tree);
        }
    }

    void drawRails()
    {
        const QColor steel(0xd8, 0xdd, 0xe6);
        for (int i = 0; i < 14; ++i) {
            const double y = 470 + i * i * 0.75;
            const double half = 20 + i * i * 1.1;
            m_painter.setBrush(QColor(0x4a, 0x3b, 0x32));
            m_painter.drawRect(QRectF(400 - half * 1.25, y, half * 2.5, 2 + i * 0.6));
        }
        m_painter.setPen(QPen(steel, 5));
        m_painter.drawLine(QPointF(388, 466), QPointF(190, sceneHeight));
        m_painter.drawLine(QPointF(412, 466), QPointF(610, sceneHeight));
        m_painter.setPen(Qt::NoPen);
    }

    const SceneDescription& m_scene;
    QPainter m_painter;
    std::mt19937 m_random;
};

QImage waveFrame(int frame)
{
    QImage image(movieWidth, movieHeight, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.fillRect(image.rect(), QColor(0xff, 0xd6, 0xa5));
    painter.setBrush(QColor(0xff, 0xf3, 0xd6));
    painter.drawEllipse(QPointF(230, 80), 30, 30);
    const double turn = 2 * 3.14159265 * frame / movieFrames;
    for (int layer = 0; layer < 4; ++layer) {
        QPainterPath wave;
        wave.moveTo(0, movieHeight);
        for (int x = 0; x <= movieWidth; x += 4)
            wave.lineTo(x, 130 + 26 * layer + 9 * std::sin(x / 34.0 + turn * (layer % 2 ? -1 : 1) + layer));
        wave.lineTo(movieWidth, movieHeight);
        painter.setBrush(QColor(0x2a, 0x9d, 0x8f).darker(100 + 28 * layer));
        painter.drawPath(wave);
    }
    painter.end();
    return image;
}

// The pieces of a RIFF file: four letters, a length, the content, padded to an even length.
std::string number(std::uint32_t value)
{
    return { static_cast<char>(value & 0xFF),
        static_cast<char>(value >> 8 & 0xFF),
        static_cast<char>(value >> 16 & 0xFF),
        static_cast<char>(value >> 24 & 0xFF) };
}

std::string numbers(std::initializer_list<std::uint32_t> values)
{
    std::string bytes;
    for (const std::uint32_t value : values)
        bytes += number(value);
    return bytes;
}

std::string chunk(std::string_view letters, const std::string& content)
{
    return std::string(letters) + number(static_cast<std::uint32_t>(content.size())) + content
        + std::string(content.size() % 2, '\0');
}

std::string list(std::string_view letters, const std::string& content)
{
    return chunk("LIST", std::string(letters) + content);
}

} // namespace

std::string drawnScene(std::string_view name)
{
    for (const SceneDescription& scene : scenes) {
        if (scene.name != name)
            continue;
        QImage image(sceneWidth, sceneHeight, QImage::Format_RGB32);
        ScenePainter(image, scene).draw();
        return pngBytes(image);
    }
    return {};
}

std::string drawnMovie()
{
    std::string frames;
    std::string index;
    std::uint32_t largest = 0;
    for (int frame = 0; frame < movieFrames; ++frame) {
        const std::string png = pngBytes(waveFrame(frame));
        const auto size = static_cast<std::uint32_t>(png.size());
        // Offsets count from the letters “movi”; every frame is a key frame (0x10).
        index += "00dc" + numbers({ 0x10, static_cast<std::uint32_t>(frames.size() + 4), size });
        frames += chunk("00dc", png);
        largest = std::max(largest, size);
    }
    const std::string mainHeader = numbers({ 1'000'000 / framesPerSecond,
        largest * framesPerSecond,
        0,
        0x10,
        movieFrames,
        0,
        1,
        largest,
        movieWidth,
        movieHeight,
        0,
        0,
        0,
        0 });
    const std::string streamHeader = "vidsMPNG"
        + numbers({ 0,
            0,
            0,
            1,
            framesPerSecond,
            0,
            movieFrames,
            largest,
            0xFFFFFFFF,
            0,
            0,
            movieHeight << 16 | movieWidth });
    const std::string format = numbers({ 40, movieWidth, movieHeight, 24U << 16 | 1U }) + "MPNG"
        + numbers({ movieWidth * movieHeight * 3, 0, 0, 0, 0 });
    const std::string header = list("hdrl",
        chunk("avih", mainHeader) + list("strl", chunk("strh", streamHeader) + chunk("strf", format)));
    return chunk("RIFF", "AVI " + header + list("movi", frames) + chunk("idx1", index));
}

} // namespace localservice
