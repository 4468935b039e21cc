// Where the tables of a database begin, read from its schema page by page.
#pragma once

#include <map>
#include <string>

#include "upkeep/recovery/TableTree.h"

namespace tsl {

struct TableRoots {
    std::map<std::string, UINT32> roots; // by the name of the table
    bool isWhole = true;                 // the schema could be read to its end
    UINT32 unreadablePages = 0;          // of the schema
};

TableRoots ReadTableRoots(const CPageFile& file, CPageUse& use);

} // namespace tsl
