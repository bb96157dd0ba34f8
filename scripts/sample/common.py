"""What the samples of several families have in common."""

import datetime
import sqlite3

NEWEST = datetime.datetime(2024, 6, 30, 12, 0, 0)


def day_of(index):
    """When the page of this index was last seen: one page a day, backwards from NEWEST."""
    return NEWEST - datetime.timedelta(days=index)


def host_of(page):
    return page.split("/")[2]


def write_database(path, schema, rows):
    """Makes a database; rows maps a table to (columns, list of tuples)."""
    database = sqlite3.connect(path)
    # A sample need not outlive a power cut, and many small databases would wait long for the disk.
    database.execute("PRAGMA synchronous = OFF")
    database.execute("PRAGMA journal_mode = MEMORY")
    database.executescript(schema)
    for table, (columns, values) in rows.items():
        marks = ", ".join("?" for _ in columns)
        database.executemany(f"INSERT INTO {table}({', '.join(columns)}) VALUES({marks})", values)
    database.commit()
    database.close()
