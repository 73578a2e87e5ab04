// Adds an author and two books, all or nothing: add_books books.mdb
#include <iostream>
#include <jet/database.h>

namespace {

void AddBooks(jet::Database& database) {
    jet::Transaction transaction(database);
    const jet::Database::AddedRow author = database.Insert(
        "Authors", std::vector<jet::Database::Field>{{"Name", std::string("Miguel de Cervantes")}});
    for (const char* title : {"Don Quijote", "La Galatea"}) {
        // Parameters need no quotes, whatever is in them.
        database.Execute(
            "INSERT INTO Books (Title, Author, Bought, Price) VALUES (:title, :author, :day, "
            ":price)",
            {{"title", std::string(title)},
             {"author", author.number},
             {"day", jet::Date{45000}},
             {"price", jet::Currency{129900}}});
    }
    transaction.Commit();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: add_books FILE\n";
        return 2;
    }
    try {
        jet::Database database = jet::Database::Open(argv[1], jet::OpenMode::ReadWrite);
        AddBooks(database);
        {
            // Without Commit() all is as it was before.
            jet::Transaction transaction(database);
            database.Execute("DELETE * FROM Books");
        }
        std::cout << database.RowCount("Books") << " books\n";
    } catch (const jet::Error& error) {
        std::cerr << error.what() << '\n';
        return error.Kind() == jet::ErrorKind::InUse ? 3 : 1;
    }
}
