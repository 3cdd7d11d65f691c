// SPDX-License-Identifier: MIT
// The vocabulary of the decks: frequent words first, which are drawn more often.
#ifndef VS_WML_BENCH_DECK_WORDS_H
#define VS_WML_BENCH_DECK_WORDS_H

// clang-format off
inline constexpr const char *kWords[] = {
    "the", "of", "to", "and", "a", "in", "is", "for", "on", "at", "with", "from", "it", "by", "are",
    "you", "be", "this", "that", "your", "or", "not", "as", "was", "will", "all", "more", "has",
    "we", "an", "new", "up", "out", "now", "one", "two", "can", "about", "after", "time", "day",
    "when", "our", "first", "no", "its", "were", "who", "been", "than", "over", "next", "home",
    "news", "here", "today", "back", "only", "there", "sun", "rain", "week", "page", "menu", "open",
    "price", "train", "night", "world", "service", "morning", "weather", "number", "between",
    "people", "message", "evening", "city", "under", "last", "water", "minutes", "account",
    "market", "airport", "station", "closed", "before", "member", "hotel", "report", "river",
    "cloudy", "balance", "departs", "arrives", "platform", "ticket", "north", "western", "island",
    "cinema", "garden", "theatre", "football", "manager", "company", "shares", "percent", "against",
    "second", "season", "player", "history", "gallery", "question", "answer", "election", "minister",
    "council", "harbour", "bridge", "mountain", "kitchen", "recipe", "chicken", "pepper", "doctor",
    "hospital", "summer", "holiday", "traffic", "motorway", "accident", "delayed", "information",
    "international", "government", "university", "temperature", "development", "restaurant",
    "telephone", "operator", "battery", "customer", "settings", "language", "password", "yesterday",
    "tomorrow", "approximately", "conversation", "responsibility", "administration", "horoscope",
};

inline constexpr const char *kProperNames[] = {
    "Aberdeen", "Berlin", "Carla", "Dublin", "Erik", "Florence", "Geneva", "Hanna", "Istanbul",
    "Jonas", "Krakow", "Lisbon", "Monday", "Nadia", "Oslo", "Prague", "Riga", "Sunday", "Turin",
};

// UTF-8; the deck has them in Shift_JIS.
inline constexpr const char *kJapaneseWords[] = {
    "今日", "明日", "天気", "東京", "大阪", "電車", "時間", "料金", "予約", "映画", "音楽", "新聞",
    "経済", "会社", "市場", "世界", "日本", "情報", "電話", "番号", "画面", "検索", "結果", "写真",
    "料理", "野菜", "季節", "夏", "冬", "山", "海", "空", "雨", "雪", "朝", "夜", "週末", "旅行",
    "温泉", "空港", "出発", "到着", "メール", "メニュー", "ニュース", "スポーツ", "サッカー", "ゲーム",
    "ホテル", "チケット", "ページ", "リンク", "私", "人", "学校", "先生", "大学", "病院", "仕事",
    "銀行", "残高", "新しい", "大きい", "小さい", "高い", "安い", "とても", "少し", "すべて", "それから",
};
inline constexpr const char *kJapaneseParticles[] = {"は", "が", "を", "に", "で", "と", "も", "の", "から", "まで"};
inline constexpr const char *kJapaneseEnds[] = {"です。", "ます。", "でした。", "ました。", "ください。", "という。"};
// clang-format on

#endif  // VS_WML_BENCH_DECK_WORDS_H
