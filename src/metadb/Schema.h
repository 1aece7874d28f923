#pragma once

namespace VemoKesConfigTools::metadb {

// The columns that keys and fields have in common, always in this order.
#define KES_RECORD_TABLE_COLUMNS                                  \
    "    uid INTEGER NOT NULL,\n"                                 \
    "    name TEXT NOT NULL,\n"                                   \
    "    type TEXT NOT NULL,\n"                                   \
    "    label TEXT NOT NULL,\n"                                  \
    "    description TEXT NOT NULL,\n"                            \
    "    description_internal TEXT NOT NULL,\n"                   \
    "    format TEXT NOT NULL,\n"                                 \
    "    min INTEGER NOT NULL,\n"                                 \
    "    max INTEGER NOT NULL,\n"                                 \
    "    units TEXT NOT NULL,\n"                                  \
    "    access TEXT NOT NULL,\n"                                 \
    "    internal INTEGER NOT NULL CHECK (internal IN (0, 1)),\n" \
    "    is_array INTEGER NOT NULL CHECK (is_array IN (0, 1)),\n" \
    "    array_min INTEGER NOT NULL,\n"                           \
    "    array_max INTEGER NOT NULL,\n"                           \
    "    oid TEXT NOT NULL,\n"                                    \
    "    source TEXT NOT NULL,\n"
#define KES_RECORD_COLUMNS                                                                                   \
    "uid, name, type, label, description, description_internal, format, min, max, units, access, internal, " \
    "is_array, array_min, array_max, oid, source"
inline constexpr int RECORD_COLUMN_COUNT = 17;

// The tables. `position` counts from 0 within the owner of the row and preserves the order of the source.
// `head` has one row. SQLite stores each statement verbatim, so a file with different tables is recognized by
// comparing the texts.
inline constexpr const char* SCHEMA =
    R"sql(CREATE TABLE head (
    id INTEGER PRIMARY KEY CHECK (id = 1),
    digest INTEGER NOT NULL
) STRICT;
CREATE TABLE system (
    id INTEGER PRIMARY KEY,
    label TEXT NOT NULL UNIQUE,
    description TEXT NOT NULL,
    version TEXT NOT NULL,
    build_date TEXT NOT NULL,
    chip_name TEXT NOT NULL,
    chip_id INTEGER NOT NULL CHECK (chip_id BETWEEN 0 AND 65535),
    rom_name TEXT NOT NULL,
    rom_version TEXT NOT NULL
) STRICT;
CREATE TABLE subsystem (
    id INTEGER PRIMARY KEY,
    system_id INTEGER NOT NULL REFERENCES system (id),
    name TEXT NOT NULL,
    alias TEXT NOT NULL,
    version TEXT NOT NULL,
    layer TEXT NOT NULL,
    variant TEXT NOT NULL,
    description TEXT NOT NULL,
    build_date TEXT NOT NULL,
    digest INTEGER NOT NULL,
    UNIQUE (system_id, name)
) STRICT;
CREATE TABLE enum_type (
    id INTEGER PRIMARY KEY,
    subsystem_id INTEGER NOT NULL REFERENCES subsystem (id),
    name TEXT NOT NULL,
    UNIQUE (subsystem_id, name)
) STRICT;
CREATE TABLE enumerator (
    enum_type_id INTEGER NOT NULL REFERENCES enum_type (id),
    position INTEGER NOT NULL,
    name TEXT NOT NULL,
    value INTEGER NOT NULL,
    PRIMARY KEY (enum_type_id, position)
) STRICT, WITHOUT ROWID;
CREATE TABLE struct_type (
    id INTEGER PRIMARY KEY,
    subsystem_id INTEGER NOT NULL REFERENCES subsystem (id),
    name TEXT NOT NULL,
    UNIQUE (subsystem_id, name)
) STRICT;
CREATE TABLE field (
    id INTEGER PRIMARY KEY,
    struct_type_id INTEGER NOT NULL REFERENCES struct_type (id),
)sql" KES_RECORD_TABLE_COLUMNS R"sql(    lsb INTEGER NOT NULL,
    width INTEGER NOT NULL
) STRICT;
CREATE INDEX field_of_struct ON field (struct_type_id);
CREATE TABLE key (
    id INTEGER PRIMARY KEY,
    subsystem_id INTEGER NOT NULL REFERENCES subsystem (id),
)sql" KES_RECORD_TABLE_COLUMNS R"sql(    psid INTEGER NOT NULL CHECK (psid BETWEEN 0 AND 4294967295),
    UNIQUE (subsystem_id, name)
) STRICT;
CREATE TABLE key_index (
    key_id INTEGER NOT NULL REFERENCES key (id),
    position INTEGER NOT NULL,
    name TEXT NOT NULL,
    min INTEGER NOT NULL,
    max INTEGER NOT NULL,
    is_enum INTEGER NOT NULL CHECK (is_enum IN (0, 1)),
    PRIMARY KEY (key_id, position)
) STRICT, WITHOUT ROWID;
CREATE TABLE key_index_value (
    key_id INTEGER NOT NULL,
    index_position INTEGER NOT NULL,
    position INTEGER NOT NULL,
    name TEXT NOT NULL,
    value INTEGER NOT NULL,
    PRIMARY KEY (key_id, index_position, position),
    FOREIGN KEY (key_id, index_position) REFERENCES key_index (key_id, position)
) STRICT, WITHOUT ROWID;
CREATE TABLE default_value (
    key_id INTEGER NOT NULL REFERENCES key (id),
    position INTEGER NOT NULL,
    indexes TEXT NOT NULL,
    value TEXT NOT NULL,
    PRIMARY KEY (key_id, position),
    UNIQUE (key_id, indexes)
) STRICT, WITHOUT ROWID;
)sql";

}  // namespace VemoKesConfigTools::metadb
