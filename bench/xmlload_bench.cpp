#include "xmlhelp.h"

#include <QCoreApplication>
#include <QDomDocument>
#include <QFile>
#include <benchmark/benchmark.h>

#include <memory>

namespace
{

QStringList sectionNames()
{
    QFile file(SCRIBORA_DEFAULT_CONFIG);
    QDomDocument document;
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file))
        return {};
    QStringList names;
    for (QDomElement section = document.documentElement().firstChildElement(); !section.isNull();
         section = section.nextSiblingElement())
        names << section.tagName();
    return names;
}

// One device load: the whole file is parsed and one section read.
void loadSection(benchmark::State &state, bool lastSection)
{
    const QStringList names = sectionNames();
    if (names.isEmpty()) {
        state.SkipWithError("default config.xml not readable");
        return;
    }
    const QByteArray name = (lastSection ? names.last() : names.first()).toUtf8();
    XMLHelp helper(SCRIBORA_DEFAULT_CONFIG);
    auto data = std::make_unique<stTablet_XMLData>();
    QMap<QString, _stAppConfigNode *> apps;
    for (auto _ : state) {
        const int loaded = helper.LoadConfig(data.get(), name.constData(), apps);
        benchmark::DoNotOptimize(loaded);
        qDeleteAll(apps);
        apps.clear();
    }
    state.SetLabel(name.toStdString() + " of " + std::to_string(names.size()) + " sections");
}

void BM_LoadFirstSection(benchmark::State &state)
{
    loadSection(state, false);
}

void BM_LoadLastSection(benchmark::State &state)
{
    loadSection(state, true);
}

BENCHMARK(BM_LoadFirstSection)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadLastSection)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    // The reader logs what it passes; keep the figures readable.
    qputenv("QT_LOGGING_RULES", "*.debug=false");
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
