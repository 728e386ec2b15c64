#pragma once

#include "Base/Uuid.h"

#include <QObject>

#include <any>
#include <map>
#include <typeindex>
#include <utility>

namespace Pallisande {

class AppModel;

// What was typed in sheets that were cancelled, until the program ends: one struct of entries a kind of
// sheet, and one of them for each record (the nil id where there is none). A sheet keeps its entries when it
// is rejected, takes them up when it opens again, and forgets them when what it is for was done. Records that
// the entries name may be gone by then.
class SheetMemory : public QObject {
    Q_OBJECT

public:
    static SheetMemory& of(AppModel& model);

    template <typename Entries> void keep(const Base::Uuid& record, Entries entries)
    {
        m_kept[{ typeid(Entries), record }] = std::move(entries);
    }
    template <typename Entries> const Entries* find(const Base::Uuid& record) const
    {
        const auto found = m_kept.find({ typeid(Entries), record });
        return found == m_kept.end() ? nullptr : std::any_cast<Entries>(&found->second);
    }
    template <typename Entries> void forget(const Base::Uuid& record)
    {
        m_kept.erase({ typeid(Entries), record });
    }

private:
    using QObject::QObject;

    std::map<std::pair<std::type_index, Base::Uuid>, std::any> m_kept;
};

} // namespace Pallisande
