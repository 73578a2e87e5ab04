// Shows the books of an author: find_books books.mdb Cervantes
#include <iostream>
#include <jet/database.h>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: find_books FILE AUTHOR\n";
        return 2;
    }
    try {
        jet::Database database = jet::Database::Open(argv[1], jet::OpenMode::ReadOnly);
        const auto rows = database.Query(
            "SELECT Books.ID, Title, Authors.Name, Price FROM Books INNER JOIN Authors ON "
            "Books.Author = Authors.ID WHERE Authors.Name Like :pattern ORDER BY Title",
            {{"pattern", "%" + std::string(argv[2]) + "%"}});
        for (; !rows->IsEof(); rows->MoveNext()) {
            const jet::Value price = rows->Get("Price");
            std::cout << std::get<std::int64_t>(rows->Get("ID")) << '\t'
                      << std::get<std::string>(rows->Get("Title")) << '\t'
                      << std::get<std::string>(rows->Get("Name")) << '\t';
            if (!jet::IsNull(price))
                std::cout << static_cast<double>(std::get<jet::Currency>(price).tenThousandths) /
                                 10000;
            std::cout << '\n';
        }
    } catch (const jet::Error& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
