int main_placeholder;
