#include "Community.h"

namespace localservice {

const std::vector<Person>& communityPeople()
{
    static const std::vector<Person> people {
        { "alice", "wonderland", "Alice Fenwick", "Bristol, England",
            "Letterpress printer, accidental gardener. Prints \"minimum\" for money. Tea > coffee. #letterpress",
            "http://press.example.org/", 6, false, true,
            { 0xffd9a8, 0xe8795a, 0xf2c6a0, 0x8a4b2a, 0x2f6f73, HairStyle::Long, Blush } },
        { "bob", "builder", "Bob Hartmann", "Leipzig",
            "Carpenter. Treehouses, stairs, stools with ambitions. Yes, I can fix it; no, not today.",
            "https://holz.example.com/~bob/?lang=de&from=profile", 6, false, true,
            { 0xbfe3f2, 0x4d8fb8, 0xecbf9d, 0x6b4a2e, 0xc2703d, HairStyle::Cap, Beard } },
        { "carol", "sourdough", "Carol O'Neil & Daughters", "Galway, Éire",
            "Baker before dawn. The hatch opens at seven; the gossip at five past.", "http://bakery.example.org",
            5, false, true, { 0xfff0c4, 0xd9a441, 0xf4cdb0, 0xb5482e, 0xf5f1ea, HairStyle::Bun, Blush } },
        { "yuki", "platform0", "佐藤ゆき", "京都", "写真と鈍行列車。Slow trains, window seats, quiet stations.",
            "http://trains.example.org/yuki", 4, false, true,
            { 0xd7d3f5, 0x6b63b5, 0xf3d3b3, 0x1f1b24, 0x38406b, HairStyle::Side, NoExtra } },
        { "omar", "yakamoz", "عمر الخطيب", "عمّان، الأردن",
            "مترجم. Translator of poems, manuals and silences. Coffee before commas.",
            "https://words.example.net/omar", 4, false, true,
            { 0xf6e2c0, 0xb88a4a, 0xcf9b6d, 0x2a211c, 0x5b3f5f, HairStyle::Short, Moustache | Glasses } },
        { "zofia", "pszczola", "Zofia Wąsik 👩‍🌾🐝", "Łódź, Polska",
            "Pszczelarka z dachu kamienicy. Rooftop beekeeper – 31 jars, 4 hives, 1 queen who ignores me.",
            "http://żółty.example.pl/miód", 3, false, true,
            { 0xfff3a6, 0xf0b429, 0xf6d5bb, 0xd8a13a, 0x3d7a4b, HairStyle::Curly, Blush } },
        { "tendai", "weaverbird", "Tendai Moyo", "Harare",
            "Free software, feed parsers, birds. Opinions are semver-compatible.", "https://code.example.org/tendai",
            5, false, true, { 0xc8f0d8, 0x2f9e73, 0x7a4a2f, 0x17120f, 0xe3b23c, HairStyle::Short, Glasses } },
        { "priya", "fourteenacross", "Priya Raghunathan", "Chennai",
            "Nurse, nights. Crosswords, days. Posts for friends only.", "", 4, true, true,
            { 0xfcd5e0, 0xc2477a, 0xb97b4f, 0x1c1418, 0x1b8a8f, HairStyle::Side, Earrings } },
        { "mateo", "barlovento",
            "Mateo Sebastián Álvarez de la Fuente y Ruiz-Montoya del Río Grande, cronista de mareas y vientos",
            "Valparaíso, Chile", "Miro el mar y tomo nota.", "http://mareas.example.org/valpo", 3, false, true,
            { 0xcdeaf7, 0x2a6f97, 0xd9a577, 0x4a4038, 0x264653, HairStyle::Curly, Beard } },
        { "nadia", "saturn", "Надежда Орлова", "Казань",
            "Астроном. Кольца Сатурна, белый кот, чёрный чай. Sky is up there ↑", "http://sky.example.org/nadia", 4,
            false, true, { 0x2b2d5b, 0x0d1130, 0xf3d6c4, 0xc9b28f, 0x8e2f4f, HairStyle::Bun, Glasses } },
        { "quiet_owl", "hoohoo", "", "", "", "", 2, false, true,
            { 0x4b5d67, 0x1e2a33, 0xd8c3a5, 0x6f6a66, 0x39464f, HairStyle::None, Glasses } },
        { "ingrid", "lumpsucker", "Ingrid Solheim", "Tromsø", "Marine biologist. Cold water, warm socks, large seals.",
            "https://lab.example.org/people/solheim_(ingrid)", 5, false, true,
            { 0xd3f4f2, 0x1f7a8c, 0xf7dccb, 0xe9d8a6, 0xd1495b, HairStyle::Long, NoExtra } },
        { "kwame", "fortymetres", "Kwame Asante-Boateng", "Kumasi",
            "Bicycles uphill, community radio, amateur radio. 9G-something on 40 m.",
            "http://radio.example.com/kwame", 3, false, true,
            { 0xffe08a, 0xd1603d, 0x6b3f28, 0x120d0b, 0x1d6b45, HairStyle::None, Beard } },
        { "noa", "bar43", "נועה ברק", "חיפה", "צ'לנית. Cello, tea, counting rests.", "http://cello.example.org/", 3,
            false, true, { 0xe9d8fd, 0x7b4fa3, 0xe6b98f, 0x3a2318, 0x22223b, HairStyle::Curly, Earrings } },
        { "dave", "tuesday", "Dave", "", "", "", 6, false, false, {} },
        { "weatherbell", "hectopascal", "Harbour Weather", "Harbour mole, north end",
            "Automatic station. Every reading at 07:00 and 19:00. Do not sail by social media.",
            "https://weather.example.org/stations/12", 2, false, true,
            { 0x9fd3ff, 0xe7f6ff, 0xffd166, 0x5fa8d3, 0x8d99ae, HairStyle::Cap, NoExtra } },
        { "leilani", "oldteapot", "Leilani Kahananui", "Hilo, Hawaiʻi",
            "Ceramics when the sea is flat, surf when it isn't. Seconds sale on the first Sunday.",
            "https://studio.example.net/leilani", 3, false, true,
            { 0xffc9b5, 0xe05780, 0xc68a5e, 0x2d1b14, 0x2a9d8f, HairStyle::Long, Blush | Earrings } },
        { "chen", "sevenyearold", "陈晓明", "成都", "语文老师，业余棋手。Teacher; loses at chess with style.",
            "http://school.example.cn/chen", 3, false, true,
            { 0xd9f2c4, 0x5a9e4b, 0xf0cda4, 0x20202a, 0x3f5fa8, HairStyle::Spiky, Glasses } },
        { "marginalia", "foxedpages", "Marginalia <Books>", "Edinburgh",
            "Second-hand & antiquarian. We buy libraries, sell shelves and employ one cat.",
            "http://marginalia.example.co.uk/", 4, false, true,
            { 0xe7d7c1, 0x735d78, 0xefc9ad, 0x9a9a9a, 0x6d2e46, HairStyle::Bun, Glasses | Earrings } },
        { "felix", "moonrocket", "Felix 🚀 “to the moon”", "Graz", "Not advice. $KITE $OATS. Doors & honey.",
            "www.moonrocket.example.com", 1, false, true,
            { 0xffb3c6, 0xfb6f92, 0xf1c7a5, 0xe07a1f, 0x343a40, HairStyle::Spiky, NoExtra } },
    };
    return people;
}

std::string_view communityFollows()
{
    return R"(alice: bob carol yuki omar zofia tendai priya mateo nadia quiet_owl ingrid kwame noa dave weatherbell leilani chen marginalia
bob: alice carol tendai kwame dave ingrid noa weatherbell marginalia leilani
carol: alice bob zofia dave leilani marginalia omar tendai kwame noa
yuki: alice nadia omar chen marginalia ingrid noa
omar: noa alice yuki marginalia chen nadia carol priya
zofia: alice carol nadia leilani ingrid
tendai: bob alice ingrid kwame dave yuki carol
priya: alice noa omar weatherbell
mateo: leilani weatherbell ingrid alice nadia
nadia: yuki ingrid chen alice omar zofia
quiet_owl: weatherbell nadia
ingrid: alice nadia yuki tendai noa mateo leilani bob
kwame: bob tendai alice leilani noa carol
noa: omar alice priya ingrid kwame bob
dave: alice carol tendai bob quiet_owl
leilani: zofia mateo carol alice kwame ingrid
chen: nadia yuki tendai alice marginalia
marginalia: omar yuki chen carol
felix: alice bob marginalia weatherbell carol)";
}

} // namespace localservice
