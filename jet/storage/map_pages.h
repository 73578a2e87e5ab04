#pragma once

#include "jet/storage/data_page.h"
#include "jet/storage/format/page_store.h"
#include "jet/storage/map_row.h"

namespace jet::storage {

/// Makes rows for new usage maps, on pages of their own.
class MapPages {
  public:
    /// Begins on `page`, a data page without owner; 0: on a page to be made.
    explicit MapPages(PageStore& pages, PageNumber page = 0) : pages_(pages), page_(page) {}

    /// The row of a new, empty map.
    RowId Add() {
        if (page_ == 0 || DataPageView(*pages_.Read(page_), page_).RoomForNew() < MapRowSize) {
            page_ = pages_.Allocate();
            MakeDataPage(pages_.Modify(page_), NoOwner);
        }
        return {page_, AddRow(pages_.Modify(page_), page_, MapRowSize, RowKind::Home)};
    }

  private:
    static constexpr std::uint32_t NoOwner = 0;

    PageStore& pages_;
    PageNumber page_;
};

}  // namespace jet::storage
