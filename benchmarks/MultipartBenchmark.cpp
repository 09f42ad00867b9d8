// A form around a large file, whose body is built on disk, beside "cp" of the same file to the same place.

#include "KRRatioBenchmark.h"
#include "foundation/KRFileManager.h"
#include "transport/KRHTTPMultipartFormData.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>

namespace {

constexpr qint64 fileSize = 256LL * 1024 * 1024;

void bodyAround256MB(benchmark::State& state)
{
    const QTemporaryDir folder;
    qputenv("XDG_CACHE_HOME", folder.path().toUtf8());
    const QString path = folder.filePath(QStringLiteral("movie"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        state.SkipWithError("the file could not be made");
        return;
    }
    QByteArray piece(1024 * 1024, Qt::Uninitialized);
    for (qint64 written = 0; written < fileSize; written += piece.size()) {
        piece.fill(static_cast<char>(written / piece.size() + 1));
        file.write(piece);
    }
    file.close();
    const QString copy = KRFileManager::multipartPOSTDataDirectory() + QStringLiteral("/copy");
    const QByteArray command = QStringLiteral("cp '%1' '%2'").arg(path, copy).toUtf8();
    KRRunBesideYardstick(
        state,
        [&] {
            KRHTTPMultipartFormData form;
            form.addVideoFile(path, QStringLiteral("media"));
            benchmark::DoNotOptimize(form.dataInputStream());
            if (form.error() || form.dataInputLength() < fileSize)
                state.SkipWithError("the body could not be built");
            form.cleanup();
        },
        [&] {
            if (std::system(command.constData()) != 0)
                state.SkipWithError("cp failed");
            QFile::remove(copy);
        });
}
BENCHMARK(bodyAround256MB)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace
