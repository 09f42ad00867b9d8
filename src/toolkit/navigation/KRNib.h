#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <vector>

class QObject;
class KRViewController;

/// A screen's interface by name: a description that is parsed once and from which any number of views are
/// built. What a description is, a file or a few lines of code, is the affair of whoever registers it. Main
/// thread.
class KRNib {
public:
    using TopLevelObjects = std::vector<std::unique_ptr<QObject>>;
    /// Builds one view: sets the owner's view and outlets, which take over what they are given. What it
    /// returns is destroyed.
    using Instantiate = std::function<TopLevelObjects(KRViewController& owner)>;
    /// Reads the description.
    using Parse = std::function<Instantiate()>;

    explicit KRNib(Instantiate instantiate)
        : m_instantiate(std::move(instantiate))
    {
    }

    static void registerNib(const QString& name, Parse parse);
    /// Parsed on the first call for that name and kept for the life of the process. Null, and logged, when
    /// there is none of that name.
    static std::shared_ptr<const KRNib> nibNamed(const QString& name);
    /// Parsed on every call.
    static std::shared_ptr<const KRNib> parseNibNamed(const QString& name);

    void instantiateWithOwner(KRViewController& owner) const;

private:
    Instantiate m_instantiate;
};
