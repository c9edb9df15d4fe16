#include "jet/check/PageUse.h"

#include <algorithm>
#include <iterator>

#include "jet/format/Bytes.h"
#include "jet/format/DataPage.h"
#include "jet/format/PageLayout.h"
#include "jet/format/UsageMapRow.h"
#include "jet/table/UsageMap.h"

namespace jet::check {

using namespace format;

namespace {

const char* const kGlobalMapName = "map of free pages";
const char* const kMapRowsName = "usage maps";

std::uint8_t TypeOf(const PageHandle& page) {
  return LoadU8(page.Data());
}

}  // namespace

PageUse::PageUse(Pager& pager, Findings& findings)
    : m_pager(&pager), m_findings(&findings), m_inUse(pager.PageCount(), true), m_owner(pager.PageCount()) {
  Claim(system_page::kHeader, "header");
  Claim(system_page::kGlobalUsageMap, kGlobalMapName);
  m_findings->Guard(kGlobalMapName, [&] { ReadGlobalMap(); });
  ReadOwners();
}

void PageUse::ReadGlobalMap() {
  const PageHandle page = m_pager->Get(system_page::kGlobalUsageMap);
  const DataPageView view(page.Bytes(), system_page::kGlobalUsageMap);
  const RowSlot slot = view.Slot(0);
  const auto row = view.Row(slot);
  if (slot.flags != data_page::kLive || row.size() < usage_map::kBitmap) {
    m_findings->Add(kGlobalMapName, "its row is missing");
    return;
  }
  const auto markFree = [&](std::uint64_t first, std::span<const std::byte> bitmap) {
    for (std::uint32_t bit = FindSetBit(bitmap, 0); bit != kNoPage; bit = FindSetBit(bitmap, bit + 1)) {
      if (first + bit < m_inUse.size()) m_inUse[static_cast<std::size_t>(first + bit)] = false;
    }
  };
  if (LoadU8(row.data()) == usage_map::kInline) {
    const std::uint64_t first = LoadU32(row.data() + usage_map::kFirstPage);
    const auto bitmap = row.subspan(usage_map::kBitmap);
    markFree(first, bitmap);
    if (first > m_inUse.size()) m_findings->Add(kGlobalMapName, "begins past the end of the file");
    for (std::uint64_t past = std::max<std::uint64_t>(first, m_inUse.size());
         past < first + 8 * bitmap.size(); ++past) {
      if (!TestBit(bitmap, static_cast<std::uint32_t>(past - first))) {
        m_findings->Add(kGlobalMapName,
                        "pages past the end of the file are in use, from " + std::to_string(past));
        break;
      }
    }
  } else if (LoadU8(row.data()) == usage_map::kByReference) {
    const std::size_t references =
        std::min((row.size() - usage_map::kReferences) / 4, usage_map::kMostReferences);
    for (std::size_t k = 0; k < references; ++k) {
      const PageNumber mapPage = LoadU32(row.data() + usage_map::kReferences + 4 * k);
      if (mapPage == 0 || !Claim(mapPage, kGlobalMapName)) continue;
      const PageHandle map = m_pager->Get(mapPage);
      if (TypeOf(map) != page_type::kUsageMap) {
        m_findings->Add(kGlobalMapName, "page " + std::to_string(mapPage) + " holds no map");
        continue;
      }
      markFree(std::uint64_t{k} * usage_map::kPagesPerMapPage,
               std::span(map.Bytes()).subspan(usage_map::kMapPageBitmap));
    }
  } else {
    m_findings->Add(kGlobalMapName, "its kind is unknown");
  }
  const auto second = view.Row(1);
  if (std::any_of(second.begin(), second.end(), [](std::byte b) { return b != std::byte{0}; })) {
    m_findings->Add(kGlobalMapName, "its second row is not empty");
  }
}

void PageUse::ReadOwners() {
  for (PageNumber number = system_page::kGlobalUsageMap + 1; number < m_inUse.size(); ++number) {
    if (!m_inUse[number]) continue;
    const PageHandle page = m_pager->Get(number);
    if (TypeOf(page) == page_type::kData)
      m_dataPages[LoadU32(page.Data() + data_page::kOwner)].push_back(number);
  }
}

bool PageUse::Claim(PageNumber page, const std::string& owner) {
  if (page >= m_owner.size()) {
    m_findings->Add(owner, "refers to page " + std::to_string(page) + ", past the end of the file");
    return false;
  }
  const auto known = m_ids.try_emplace(owner, static_cast<std::uint32_t>(m_names.size() + 1));
  if (known.second) m_names.push_back(owner);
  if (m_owner[page] == 0) {
    m_owner[page] = known.first->second;
    return true;
  }
  if (m_owner[page] != known.first->second) {
    m_findings->Add("page " + std::to_string(page),
                    "belongs to two structures, " + m_names[m_owner[page] - 1] + " and " + owner);
  }
  return false;
}

bool PageUse::IsOwnedBy(PageNumber page, const std::string& owner) const {
  const auto known = m_ids.find(owner);
  return known != m_ids.end() && page < m_owner.size() && m_owner[page] == known->second;
}

std::vector<PageNumber> PageUse::ReadMap(std::uint32_t pointer, const std::string& owner) {
  const auto noted = m_mapRows.try_emplace(pointer, owner);
  if (!noted.second) {
    m_findings->Add(owner, "shares its usage map with " + noted.first->second);
  }
  const UsageMap map(*m_pager, pointer);
  std::vector<PageNumber> pages = map.Pages();
  Claim(RowPointerPage(pointer), kMapRowsName);
  for (const PageNumber mapPage : map.MapPages()) {
    if (!Claim(mapPage, "usage map of " + owner)) m_findings->Add(owner, "uses a map page twice");
  }
  return pages;
}

const std::vector<PageNumber>& PageUse::DataPagesOf(std::uint32_t owner) const {
  static const std::vector<PageNumber> kNone;
  const auto found = m_dataPages.find(owner);
  return found == m_dataPages.end() ? kNone : found->second;
}

void PageUse::CheckFreeSpace(PageNumber number) {
  const PageHandle page = m_pager->Get(number);
  const std::string where = "page " + std::to_string(number);
  if (LoadU8(page.Data() + 1) != page_type::kSecondByte) m_findings->Add(where, "its second byte is not 1");
  if (TypeOf(page) != page_type::kData) return;
  m_findings->Guard(where, [&] {
    const DataPageView view(page.Bytes(), number);
    const std::size_t slots = view.SlotCount();
    const std::size_t lowest = slots == 0 ? kPageSize : view.Slot(slots - 1).begin;
    const std::size_t expected = lowest - data_page::kSlots - 2 * slots;
    if (view.FreeSpace() != expected) {
      m_findings->Add(where, "says that " + std::to_string(view.FreeSpace()) + " bytes are free, and " +
                                 std::to_string(expected) + " are");
    }
  });
}

void PageUse::Finish() {
  for (PageNumber page = 0; page < m_owner.size(); ++page) {
    if (m_owner[page] == 0) continue;
    if (!m_inUse[page]) {
      m_findings->Add("page " + std::to_string(page),
                      "is marked free and belongs to " + m_names[m_owner[page] - 1]);
    }
    if (page != system_page::kHeader) CheckFreeSpace(page);
  }
}

std::string Ranges(const std::vector<PageNumber>& ascending) {
  constexpr std::size_t kMostShown = 20;
  std::string text;
  std::size_t shown = 0;
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    const PageNumber first = ascending[i];
    while (i + 1 < ascending.size() && ascending[i + 1] == ascending[i] + 1)
      ++i;
    if (shown++ == kMostShown) return text + ", ...";
    if (!text.empty()) text += ", ";
    text += std::to_string(first);
    if (ascending[i] != first) text += "-" + std::to_string(ascending[i]);
  }
  return text;
}

std::vector<PageNumber> Without(const std::vector<PageNumber>& pages, const std::vector<PageNumber>& others) {
  std::vector<PageNumber> rest;
  std::set_difference(pages.begin(), pages.end(), others.begin(), others.end(), std::back_inserter(rest));
  return rest;
}

}  // namespace jet::check
