// FactoryTable: which components the module offers.

#pragma once

#include <cstdint>
#include <memory>

class IOrnInterface;

struct FactoryRow {
    const char* InterfaceName; // static texts
    const char* ComponentName;
    IOrnInterface* (*Create)();      // gives null if memory is short
    void (*Destroy)(IOrnInterface*); // takes what Create gave, or null
};

struct FactoryTable {
    int32_t Count = 0;    // rows in use
    int32_t Capacity = 0; // rows allocated
    std::unique_ptr<FactoryRow[]> Rows;

    /// Adds a row at the end; the array grows by ten rows at a time.
    void AddFactoryRow(const FactoryRow& row);
    /// Returns row `index`, or null for an index outside the table.
    const FactoryRow* Find(int32_t index) const;
};
