// Makes a new database with two tables: make_database books.mdb
#include <iostream>
#include <jet/database.h>
#include <vector>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: make_database FILE\n";
        return 2;
    }
    try {
        jet::TableDefinition authors;
        authors.name = "Authors";
        authors.columns = {{.name = "ID", .type = jet::ColumnType::Long, .autoNumber = true},
                           {.name = "Name", .type = jet::ColumnType::Text, .size = 100}};
        authors.indexes = {{.name = "PrimaryKey", .columns = {{.column = 0}}, .primary = true}};
        jet::Database::Create(argv[1], std::vector{authors});

        // Or in SQL, in a database that is there.
        jet::Database database = jet::Database::Open(argv[1], jet::OpenMode::ReadWrite);
        database.Execute(
            "CREATE TABLE Books (ID COUNTER PRIMARY KEY, Title TEXT(200) NOT NULL, Author LONG, "
            "Bought DATETIME, Price CURRENCY, Notes MEMO)");
        database.Execute("CREATE INDEX ByAuthor ON Books (Author)");
        std::cout << argv[1] << ": made\n";
    } catch (const jet::Error& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
