// Prints the statements that would make a database's tables: read_schema books.mdb
#include <iostream>
#include <jet/database.h>
#include <jet/statement.h>
#include <jet/version.h>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: read_schema FILE\n";
        return 2;
    }
    try {
        std::cout << "-- read with quillon-jet " << jet::LibraryVersion() << '\n';
        const jet::Database database = jet::Database::Open(argv[1], jet::OpenMode::ReadOnly);
        for (const jet::TableDefinition& table : database.Tables()) {
            std::cout << "-- " << table.name << ": " << database.RowCount(table.name) << " rows\n";
            for (const std::string& statement : jet::CreateStatements(table))
                std::cout << statement << ";\n";
        }
    } catch (const jet::Error& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
