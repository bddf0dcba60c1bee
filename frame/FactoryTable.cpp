#include "frame/FactoryTable.h"

#include <algorithm>

void FactoryTable::AddFactoryRow(const FactoryRow& row) {
    constexpr int32_t kStep = 10;
    if (Count >= Capacity) {
        const int32_t capacity = Rows ? Capacity + kStep : kStep;
        std::unique_ptr<FactoryRow[]> rows(new FactoryRow[static_cast<size_t>(capacity)]);
        if (Rows) std::copy_n(Rows.get(), Capacity, rows.get());
        Capacity = capacity;
        Rows = std::move(rows);
    }
    Rows[static_cast<size_t>(Count)] = row;
    ++Count;
}

const FactoryRow* FactoryTable::Find(int32_t index) const {
    return index >= 0 && index < Count ? &Rows[static_cast<size_t>(index)] : nullptr;
}
