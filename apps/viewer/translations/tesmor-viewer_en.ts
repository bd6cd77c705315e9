<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>tesmor::apps::Session</name>
    <message numerus="yes">
        <source>There is not enough memory for %n slices: they need about %1.</source>
        <translation>
            <numerusform>There is not enough memory for %n slice: it needs about %1.</numerusform>
            <numerusform>There is not enough memory for %n slices: they need about %1.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n slices captured in %1 s.</source>
        <translation>
            <numerusform>%n slice captured in %1 s.</numerusform>
            <numerusform>%n slices captured in %1 s.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n slices fused in %1 s.</source>
        <translation>
            <numerusform>%n slice fused in %1 s.</numerusform>
            <numerusform>%n slices fused in %1 s.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>tesmor::apps::StackPanel</name>
    <message numerus="yes">
        <source>%n slices</source>
        <translation>
            <numerusform>%n slice</numerusform>
            <numerusform>%n slices</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n steps</source>
        <translation>
            <numerusform>%n step</numerusform>
            <numerusform>%n steps</numerusform>
        </translation>
    </message>
</context>
</TS>
